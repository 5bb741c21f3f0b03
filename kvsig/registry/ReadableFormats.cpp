#include "kvsig/registry/ReadableFormats.h"

#include "kvsig/readers/BDFReader.h"
#include "kvsig/readers/CyberkineticsReader.h"
#include "kvsig/readers/EDF90Reader.h"
#include "kvsig/readers/InterleavedReader.h"
#include "kvsig/readers/LifelinesReader.h"
#include "kvsig/readers/MicromedReader.h"
#include "kvsig/readers/NK2100Reader.h"
#include "kvsig/readers/NervusReader.h"
#include "kvsig/readers/NeuroscanReader.h"
#include "kvsig/readers/PushableReader.h"
#include "kvsig/readers/SnapshotReader.h"
#include "kvsig/readers/TelefactorEDFReader.h"
#include "kvsig/readers/UnsupportedReader.h"
#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/registry/types/NewReader.h"
#include "kvsig/registry/types/TypeTable.h"

#include <algorithm>

namespace kvsig {
namespace {

template <typename Reader>
std::unique_ptr<DataReader> make() {
    return std::make_unique<Reader>();
}

// A format that is built enters here; its row of the type table stands already.
constexpr ReadableFormat formats[] = {
    {interleavedType, make<InterleavedReader>, nullptr},
    {6, make<EDF90Reader>, EDF90Reader::isFileType},
    {19, make<NK2100Reader>, NK2100Reader::isFileType},
    {28, make<MicromedReader>, MicromedReader::isFileType},
    {snapshotType, make<SnapshotReader>, nullptr},
    {41, make<LifelinesReader>, EDF90Reader::isFileType},
    {pushableType, make<PushableReader>, nullptr},
    {46, make<NeuroscanReader>, NeuroscanReader::isFileType},
    {47, make<TelefactorEDFReader>, EDF90Reader::isFileType},
    {48, make<BDFReader>, BDFReader::isFileType},
    {52, make<NervusReader>, NervusReader::isFileType},
    {54, make<CyberkineticsReader>, CyberkineticsReader::isFileType},
};

const ReadableFormat* readableFormat(ReaderType type) {
    const auto found = std::find_if(std::begin(formats), std::end(formats),
                                    [type](const ReadableFormat& f) { return f.type == type; });
    return found == std::end(formats) ? nullptr : found;
}

} // namespace

std::span<const ReadableFormat> readableFormats() { return formats; }

IDataReader* newReader(ReaderType type) {
    if (const ReadableFormat* format = readableFormat(type))
        return format->make().release();
    if (isLayoutType(type))
        return nullptr;
    for (const TypeRow& row : typeTable())
        if (row.type == type)
            return std::make_unique<UnsupportedReader>(row.name).release();
    return nullptr;
}

bool KrnlIsReadable(int type) {
    if (isPairType(type))
        return KrnlIsReadable(firstOfPair(type)) && KrnlIsReadable(secondOfPair(type));
    return isLayoutType(type) || readableFormat(type) != nullptr;
}

} // namespace kvsig
