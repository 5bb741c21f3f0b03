#include "kvsig/readers/NervusContainer.h"

#include "kvsig/readers/NervusLayout.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <map>
#include <utility>

namespace kvsig::nervus {
namespace {

constexpr std::int64_t entriesAtOnce = 4096;

bool isChannelTag(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), isDigit);
}

bool isWanted(const std::string& name) {
    return isChannelTag(name) || name == segmentTag || name == changeTag || name == eventTag ||
           name == seriesTag || name == patientTag;
}

// What is read of the file up to the end of its tags; 0 when it is no such table.
std::int64_t bytesUpToTags(const HeaderBlock& head) {
    const std::int64_t count = valueOf(head, tagCount);
    return count <= mostTags ? tags + count * tagBytes : 0;
}

// Tag names with their section numbers.
std::vector<std::pair<std::string, std::uint32_t>> tagsOf(const HeaderBlock& head) {
    std::vector<std::pair<std::string, std::uint32_t>> found;
    for (std::int64_t base = tags; base < bytesUpToTags(head); base += tagBytes)
        found.emplace_back(valueOf(head, tag::name, base), valueOf(head, tag::section, base));
    return found;
}

bool hasContainerTags(const HeaderBlock& head) {
    const auto found = tagsOf(head);
    return valueOf(head, indexPointer) != 0 &&
           std::any_of(found.begin(), found.end(), [](const auto& entry) {
               return entry.first == segmentTag || entry.first == changeTag;
           });
}

/// Goes through the blocks of the main index.
class IndexWalk {
  public:
    IndexWalk(const HeaderFile& file, Container& container)
        : m_file(file), m_container(container) {}

    void wants(std::uint32_t number, const std::string& name) { m_names.emplace(number, name); }
    void run(std::int64_t first, std::int64_t entries);

  private:
    bool visit(std::int64_t block, std::int64_t end);
    void take(const HeaderBlock& entries);
    void takePiece(const std::string& name, std::uint64_t offset, std::int64_t length);

    const HeaderFile& m_file;
    Container& m_container;
    std::map<std::uint64_t, std::string> m_names;
    std::map<std::int64_t, std::int64_t> m_visited; ///< ends of blocks by their starts
};

void IndexWalk::run(std::int64_t first, std::int64_t entries) {
    const std::int64_t size = m_file.size();
    std::int64_t left = entries;
    for (std::int64_t at = first;
         left > 0 && m_container.fault.empty() && m_file.fault().empty();) {
        const std::string place = "index block " + std::to_string(m_visited.size() + 1) +
                                  " (offset " + std::to_string(at) + ")";
        const auto stop = [&](const std::string& why) {
            m_container.oddities.push_back(place + why + ": " + std::to_string(left) + " of " +
                                           std::to_string(entries) +
                                           " index entries are not there");
        };
        if (at < 0 || at > size - index::entries)
            return stop(" leaves the file of " + std::to_string(size) + " bytes");
        const std::uint64_t count =
            valueOf(m_file.read("index block", at, index::entries), index::count);
        const std::int64_t room = (size - at - index::entries) / index::entryBytes;
        if (m_visited.size() >= mostIndexBlocks)
            return stop(" is one too many");
        if (std::cmp_greater(count, room))
            return stop(" says " + std::to_string(count) + " entries, there is room for " +
                        std::to_string(room));
        const auto held = static_cast<std::int64_t>(count);
        const std::int64_t end = at + index::entries + held * index::entryBytes;
        if (!visit(at, end)) {
            m_container.error = 2;
            m_container.fault = place + " overlaps one that was read before: the index goes round";
            return;
        }
        if (held > left)
            m_container.oddities.push_back(place + " says " + std::to_string(held) +
                                           " entries, of which only " + std::to_string(left) +
                                           " count by the header");
        const std::int64_t taken = std::min(held, left);
        for (std::int64_t i = 0; i < taken; i += entriesAtOnce)
            take(m_file.read("entries of the index", at + index::entries + i * index::entryBytes,
                             std::min(entriesAtOnce, taken - i) * index::entryBytes));
        left -= taken;
        const HeaderBlock next = m_file.read("end of an index block", end, 8);
        const auto pointer = valueOf(next, NumberField<std::int64_t>{"", 0});
        if (left > 0 && pointer == 0) {
            m_container.oddities.push_back("its index ends before " + std::to_string(left) +
                                           " of " + std::to_string(entries) +
                                           " entries: it may still have been written");
            return;
        }
        at = pointer;
    }
}

// False when it overlaps one that was there before, which every circle comes to.
bool IndexWalk::visit(std::int64_t block, std::int64_t end) {
    const auto next = m_visited.lower_bound(block);
    if ((next != m_visited.end() && next->first < end) ||
        (next != m_visited.begin() && std::prev(next)->second > block))
        return false;
    m_visited.emplace(block, end);
    return true;
}

void IndexWalk::take(const HeaderBlock& entries) {
    const auto held = static_cast<std::int64_t>(entries.bytes().size());
    for (std::int64_t at = 0; at + index::entryBytes <= held; at += index::entryBytes) {
        const auto name = m_names.find(valueOf(entries, index::section, at));
        const std::int64_t length = valueOf(entries, index::length, at);
        if (name != m_names.end() && length > 0)
            takePiece(name->second, valueOf(entries, index::offset, at), length);
    }
}

// A piece that is not wholly there ends its section: the next one does not follow on it.
void IndexWalk::takePiece(const std::string& name, std::uint64_t offset, std::int64_t length) {
    const std::int64_t size = m_file.size();
    Section& section = m_container.sections[name];
    section.name = name;
    if (section.cut)
        return;
    const std::int64_t room =
        std::cmp_less(offset, size) ? size - static_cast<std::int64_t>(offset) : 0;
    if (length > room) {
        section.cut = true;
        m_container.oddities.push_back("section " + name + " is cut: " + std::to_string(length) +
                                       " bytes of it at offset " + std::to_string(offset) +
                                       " leave the file of " + std::to_string(size) + " bytes");
    }
    if (room > 0)
        section.add({static_cast<std::int64_t>(offset), std::min(length, room)});
    if (section.length > size) {
        m_container.error = 2;
        m_container.fault = "the pieces of section " + name + " have more bytes than the file";
    }
}

// A byte of two channels, or of two places in one, would be shown twice.
std::string overlapOf(const std::map<std::string, Section>& sections) {
    std::vector<Section::Piece> pieces;
    for (const auto& [name, section] : sections)
        if (isChannelTag(name))
            pieces.insert(pieces.end(), section.pieces.begin(), section.pieces.end());
    std::sort(pieces.begin(), pieces.end(),
              [](const auto& a, const auto& b) { return a.offset < b.offset; });
    for (std::size_t i = 1; i < pieces.size(); ++i)
        if (pieces[i].offset < pieces[i - 1].offset + pieces[i - 1].length)
            return "two pieces of samples, at offsets " + std::to_string(pieces[i - 1].offset) +
                   " and " + std::to_string(pieces[i].offset) + ", overlap";
    return {};
}

} // namespace

void Section::add(Piece piece) {
    pieces.push_back(piece);
    starts.push_back(length);
    length += piece.length;
}

HeaderBlock Section::read(const HeaderFile& file, std::int64_t offset, std::int64_t bytes) const {
    if (offset < 0 || offset >= length || bytes <= 0)
        return {};
    const std::int64_t wanted = std::min(bytes, length - offset);
    std::vector<std::byte> joined;
    auto piece = static_cast<std::size_t>(std::upper_bound(starts.begin(), starts.end(), offset) -
                                          starts.begin() - 1);
    for (std::int64_t done = 0; done < wanted; ++piece) {
        const std::int64_t within = offset + done - starts[piece];
        const std::int64_t part = std::min(wanted - done, pieces[piece].length - within);
        const HeaderBlock block = file.read("section " + name, pieces[piece].offset + within, part);
        joined.insert(joined.end(), block.bytes().begin(), block.bytes().end());
        if (std::cmp_less(block.bytes().size(), part))
            break;
        done += part;
    }
    return HeaderBlock(std::move(joined));
}

const Section& Container::section(const std::string& name) const {
    static const Section none;
    const auto found = sections.find(name);
    return found == sections.end() ? none : found->second;
}

bool isContainer(const File& file) {
    const std::int64_t bytes = bytesUpToTags(HeaderBlock::readFrom(file, tags));
    return hasContainerTags(HeaderBlock::readFrom(file, bytes));
}

Container readContainer(const HeaderFile& file) {
    Container made;
    const auto failed = [&made](int error, const std::string& fault) {
        made.error = error;
        made.fault = fault;
        return std::move(made);
    };
    const std::int64_t size = file.size();
    const HeaderBlock head = file.read("header", 0, headBytes);
    if (size < tags)
        return failed(2, "the file ends after " + std::to_string(size) +
                             " bytes, inside the header of at least " + std::to_string(headBytes));
    if (valueOf(head, indexPointer) == 0)
        return failed(3, sentenceOf(head, indexPointer) +
                             ": recordings of the older Nervus generation (before about 2012) are "
                             "a variant whose layout is not known");
    if (valueOf(head, tagCount) == 0 || std::cmp_greater(valueOf(head, tagCount), mostTags))
        return failed(2, sentenceOf(head, tagCount) + ", 1 to " + std::to_string(mostTags) +
                             " can be read");
    if (size < headBytes)
        return failed(2, "the file ends after " + std::to_string(size) +
                             " bytes, inside the header of at least " + std::to_string(headBytes));
    if (!hasContainerTags(head))
        return failed(3, "none of its " + std::to_string(valueOf(head, tagCount)) +
                             " tags is that of segments or changes: it is no container of a "
                             "Nervus or NicoletOne recording");
    IndexWalk walk(file, made);
    std::map<std::uint32_t, std::string> owners;
    std::map<std::string, std::uint32_t> seen;
    for (const auto& [name, number] : tagsOf(head)) {
        if (!isWanted(name))
            continue;
        if (const auto known = seen.emplace(name, number).first; known->second != number) {
            const std::string twice = "there are two tags " + name + " with different sections";
            if (name != eventTag && name != patientTag)
                return failed(2, twice);
            made.oddities.push_back(twice + ": the first counts");
            continue;
        }
        if (const auto owner = owners.emplace(number, name).first; owner->second != name)
            return failed(2, "the tags " + owner->second + " and " + name + " share section " +
                                 std::to_string(number));
        walk.wants(number, name);
    }
    const std::int64_t entries = valueOf(head, entryCount);
    if (entries == 0)
        return failed(2, sentenceOf(head, entryCount));
    walk.run(valueOf(head, indexPointer), entries);
    if (made.fault.empty())
        if (const std::string overlap = overlapOf(made.sections); !overlap.empty())
            return failed(2, overlap);
    return made;
}

} // namespace kvsig::nervus
