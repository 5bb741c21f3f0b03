#pragma once

#include "Question.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace kvsig::bench {

/// A recording as one library reads it; results go to buffers of its own, as a host would keep
/// them. Times are in seconds; windows end inside the recording and hold whole records.
class Reading {
  public:
    virtual ~Reading() = default;
    [[nodiscard]] virtual std::size_t channels() const = 0;
    [[nodiscard]] virtual double duration() const = 0;
    virtual void window(double start, double seconds) = 0;
    virtual void channelWindow(std::size_t channel, double start, double seconds) = 0;
    /// Bytes of the buffers that a host holds for results.
    [[nodiscard]] virtual std::size_t callerBytes() const { return 0; }
    /// What the last window holds of a channel; empty for those who give no floats.
    [[nodiscard]] virtual std::span<const float> floats(std::size_t /*channel*/) const {
        return {};
    }
};

/// Somebody who reads.
struct Reader {
    std::string name;
    std::unique_ptr<Reading> (*open)(const std::string& path);
};

/// Plain reading, the limit, this library, then the peers that were found when this was built.
[[nodiscard]] std::vector<Reader> readers();

/// Every reader as a contender: what is timed is `run` on a recording that was just opened.
[[nodiscard]] std::vector<Contender> contenders(const std::string& path,
                                                std::function<void(Reading&)> run);

std::unique_ptr<Reading> openPlain(const std::string& path);
std::unique_ptr<Reading> openStraight(const std::string& path);
std::unique_ptr<Reading> openKvsig(const std::string& path);
std::unique_ptr<Reading> openEdflib(const std::string& path);
std::unique_ptr<Reading> openBiosig(const std::string& path);

} // namespace kvsig::bench
