#pragma once

#include "kvsig/registry/types/DRFactory.h"
#include "kvsig/registry/types/UnheldReader.h"
#include "kvsig/util/Export.h"

#include <memory>
#include <string>
#include <vector>

namespace kvsig {

using CString = std::string; ///< A path that an allocation may change.

/// The registry: the formats in the order that the host prefers, and the readers made for them.
///
/// There is one per process, dataReaderManager(). It has no lock: registerFactory(),
/// setFileTypeFlag(), setSortOrder() and the lists of types belong to the whole process and are
/// called before other threads start. openReader() may then be called on several threads at once;
/// all else here from one thread at a time. Null texts count as empty ones.
class KVSIG_API DataReaderManager {
  public:
    /// Bytes that getFileTypeName() writes at most, the terminator included.
    static constexpr int typeNameSize = 47;

    DataReaderManager();
    DataReaderManager(const DataReaderManager&) = delete;
    DataReaderManager& operator=(const DataReaderManager&) = delete;
    virtual ~DataReaderManager();

    /// @{
    /// The file-type mode. 1, the initial one, enables all formats but XML layouts; 2 enables
    /// types 20 and 13 (and 1) alone; 4 enables all; others change no format's flags.
    virtual int getFileTypeFlag();
    virtual void setFileTypeFlag(int mode);
    /// @}

    /// The enabled and listed records, in registry order.
    virtual std::vector<DRFactory*> listedFactories();
    /// @{
    /// The first enabled and listed record of exactly that name, or of that type; null if none.
    virtual DRFactory* findFactoryByName(const char* name);
    virtual DRFactory* findFactoryByType(int type);
    /// @}

    /// @{
    /// Types of the enabled and listed records, ended by 0; and their names and patterns in turn,
    /// ended by two nulls. Both arrays are the registry's, valid until the next call of either.
    virtual int* getFileTypes();
    virtual const char** getFileTypeStrings();
    /// @}

    /// The type of a type name as layouts write it; 0 when it is none. The name may be the
    /// beginning of a format's name, or begin with one of a few fixed names. Letter case is
    /// ignored.
    virtual int getFileType(const char* typeName);
    /// Writes the first word of a format's name, or with wholeTypeName set in `type` the whole name
    /// (cut to typeNameSize - 1), to `buffer`. Returns 1, or 0 with an empty text.
    virtual int getFileTypeName(int type, char* buffer);
    /// The tag of the first enabled and listed record of that type, or "".
    virtual const char* getPartnerTag(int type);
    /// Flags of the first enabled and listed record of that type, or 0.
    virtual unsigned long getStaticFlags(int type);
    /// @{
    /// The names of all records; and the order in which the named ones are to come first.
    virtual std::vector<const char*> getSortOrder();
    virtual void setSortOrder(const std::vector<const char*>& names);
    /// @}

    /// Appends a record. It stays the caller's and must outlive the registry, unless its owned flag
    /// is set. Null is ignored.
    virtual void registerFactory(DRFactory* factory);
    /// As allocate(), with type and name stamped on the reader. Pairs ask it for their members.
    virtual IDataReader* allocReader(int type, CString& name);

    /// A new, unopened reader with reference count 0 that belongs to the caller, or null. Of a pair
    /// type (`name` is both paths joined by '*') `name` becomes the first path, and both members
    /// belong to the caller too.
    IDataReader* allocate(int type, CString& name);
    /// The same in an owning handle; a null result comes with a sentence that says why, without the
    /// file's name.
    UnheldReader allocate(int type, CString& name, std::string& reason);

    /// All records, whatever their flags, in registry order.
    [[nodiscard]] const std::vector<DRFactory*>& factories() const { return m_factories; }

  private:
    void refreshLists();
    DRFactory* firstOfType(int type) const;
    UnheldReader allocatePair(int type, CString& name, std::string& reason);
    UnheldReader allocateSingle(int type, CString& name, std::string& reason);

    std::vector<DRFactory*> m_factories;
    int m_fileTypeMode = 0;
    std::vector<int> m_types;
    std::vector<const char*> m_typeStrings;
    std::vector<std::unique_ptr<DRFactory>> m_rows; ///< the records of the type table
};

/// The process's registry, built on first use.
[[nodiscard]] KVSIG_API DataReaderManager& dataReaderManager();

} // namespace kvsig
