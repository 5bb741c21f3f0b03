#include "kvsig/readers/BlackrockBlocks.h"

#include "kvsig/readers/FlatRecording.h"
#include "kvsig/readers/HeaderFields.h"
#include "kvsig/util/Limits.h"

#include <algorithm>
#include <optional>

namespace kvsig::blackrock {
namespace {

constexpr NumberField<std::uint8_t> blockFlag{"flag of a data block", 0};
constexpr NumberField<std::uint32_t> narrowStamp{"time stamp", 1};
constexpr NumberField<std::uint32_t> narrowCount{"number of samples of a data block", 5};
constexpr NumberField<std::uint64_t> wideStamp{"time stamp", 1};
constexpr NumberField<std::uint32_t> wideCount{"number of samples of a data block", 9};

constexpr int soundFlag = 1;

struct Block {
    std::int64_t offset = 0;
    int flag = 0;
    std::uint64_t stamp = 0;
    std::int64_t frames = 0;
};

// Heads of blocks, read in pieces as wide as the blocks are short.
class Heads {
  public:
    Heads(const HeaderFile& file, const BlockLayout& layout) : m_file(file), m_layout(layout) {}

    Block at(std::int64_t offset) {
        const std::int64_t base = find(offset, m_layout.headBytes());
        return m_layout.wideStamps
                   ? Block{offset, valueOf(m_block, blockFlag, base),
                           valueOf(m_block, wideStamp, base), valueOf(m_block, wideCount, base)}
                   : Block{offset, valueOf(m_block, blockFlag, base),
                           valueOf(m_block, narrowStamp, base),
                           valueOf(m_block, narrowCount, base)};
    }

  private:
    // Where the head at `offset` begins in m_block.
    std::int64_t find(std::int64_t offset, std::int64_t bytes) {
        constexpr std::int64_t near = 64 << 10, wide = 1 << 20;
        const auto held = static_cast<std::int64_t>(m_block.bytes().size());
        if (offset < m_start || offset + bytes > m_start + held) {
            const bool close = offset - m_last < near;
            m_block = m_file.read("head of a data block", offset, close ? wide : bytes);
            m_start = offset;
        }
        m_last = offset;
        return offset - m_start;
    }

    const HeaderFile& m_file;
    const BlockLayout& m_layout;
    HeaderBlock m_block;
    std::int64_t m_start = 0;
    std::int64_t m_last = 0;
};

void append(std::vector<Run>& runs, const Block& block, const BlockLayout& layout) {
    if (block.frames < 1)
        return;
    Run* last = runs.empty() ? nullptr : &runs.back();
    const bool joins =
        last && layout.longestStep > 0 && block.frames == 1 && last->frames == last->blocks &&
        block.stamp > last->lastStamp && block.stamp - last->lastStamp <= layout.longestStep &&
        block.offset == last->offset + last->blocks * (layout.headBytes() + layout.frameBytes());
    if (!joins) {
        runs.push_back({block.offset, block.frames, 1, block.stamp, block.stamp, 0});
        return;
    }
    if (block.stamp - last->lastStamp > layout.longestStep - layout.longestStep / 4)
        ++last->longSteps;
    ++last->frames;
    ++last->blocks;
    last->lastStamp = block.stamp;
}

std::string atOffset(std::int64_t offset) { return " at offset " + std::to_string(offset); }

// Samples may look like a head by chance; what a block of so many frames claims is none. A copy
// that was cut has blocks longer than itself.
bool isHead(const Block& block, std::int64_t framesOfFile) {
    constexpr std::int64_t longBlock = std::int64_t{1} << 26; // 9 hours at 2000 Hz
    constexpr std::int64_t cutOff = 16;                       // times the file
    return block.flag == soundFlag && block.frames <= std::max(longBlock, cutOff * framesOfFile);
}

} // namespace

// A block of no frames was never closed when what follows it has no flag of a head: the rest is its
// samples. It was empty when a block behind it proves to be one, since its frames lead to another
// head or to the end, or when all heads can be walked to the end. Else the recording stops before
// it. No time stamp takes part: clocks start anew.
BlockScan scanBlocks(const HeaderFile& file, const BlockLayout& layout) {
    BlockScan scan;
    Heads heads(file, layout);
    const std::int64_t size = file.size();
    const std::int64_t framesOfFile = wholeFrames(layout.offset, size, layout.frameBytes());
    std::optional<Block> open; // a block of no frames of which it is not known yet
    std::size_t runsBeforeOpen = 0;
    bool leads = false;  // the block before has frames, and they end here
    bool broken = false; // the walk ended before the file
    for (std::int64_t offset = layout.offset;
         offset < size && scan.runs.size() <= mostBlockRuns && file.fault().empty();) {
        const std::int64_t data = offset + layout.headBytes();
        Block block = heads.at(offset); // of one that is cut, what is there
        const bool head = isHead(block, framesOfFile);
        if (open && offset == open->offset + layout.headBytes() && block.flag != soundFlag) {
            scan.oddities = {"the data block" + atOffset(open->offset) +
                             " says 0 samples, as in a recording that was not closed: the rest of "
                             "the file is taken for its samples"};
            open->frames = wholeFrames(offset, size, layout.frameBytes());
            append(scan.runs, *open, layout);
            return scan;
        }
        if (leads && (head || data > size))
            open.reset();
        if (data > size) {
            scan.oddities.push_back("its last " + std::to_string(size - offset) +
                                    " bytes are no whole data block");
            broken = true;
            break;
        }
        if (block.flag != soundFlag) {
            scan.oddities.push_back(std::string(blockFlag.name) + " (offset " +
                                    std::to_string(offset) + ") is " + std::to_string(block.flag) +
                                    ", not 1: what follows is left out");
            broken = true;
            break;
        }
        const std::int64_t whole = wholeFrames(data, size, layout.frameBytes());
        if (block.frames > whole) {
            scan.oddities.push_back("the data block" + atOffset(offset) + " says " +
                                    std::to_string(block.frames) + " samples, " +
                                    std::to_string(whole) + " are left in the file");
            block.frames = whole;
            append(scan.runs, block, layout);
            broken = true;
            break;
        }
        offset = data + block.frames * layout.frameBytes();
        leads = block.frames > 0;
        if (block.frames == 0 && !open) {
            open = block;
            runsBeforeOpen = scan.runs.size();
        }
        append(scan.runs, block, layout);
    }
    if (open && broken) {
        scan.runs.resize(runsBeforeOpen);
        scan.oddities = {"the data block" + atOffset(open->offset) +
                         " says 0 samples, and what follows it may be another block or, of a "
                         "recording that was not closed, its samples: the recording is shown up "
                         "to there"};
    }
    return scan;
}

} // namespace kvsig::blackrock
