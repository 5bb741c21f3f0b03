#pragma once

#include "kvsig/kernel/IDataReader.h"

#include <string>
#include <vector>

namespace kvsig::tool {

/// What a channel is labelled with: its name in UTF-8, or "#index" when it has none.
[[nodiscard]] std::string channelLabel(IDataReader& reader, int channel);

/// The channels of a recording under the names that a user gives them: the channel's name, the
/// electrode's name, or "#index". Letter case does not matter. Texts are UTF-8.
class ChannelNames {
  public:
    explicit ChannelNames(IDataReader& reader);

    /// The same for a channel of the recording.
    [[nodiscard]] std::string label(int channel) const;
    /// The channels of that name, in order: of that channel name, else of that electrode name.
    [[nodiscard]] std::vector<int> all(const std::string& name) const;
    /// The first of them, or -1.
    [[nodiscard]] int find(const std::string& name) const;
    /// True for an electrode's name that is no channel's: it stands for the channel without what
    /// that was recorded against.
    [[nodiscard]] bool isElectrode(const std::string& name) const;
    /// "; the nearest are ...": what may have been meant by an unknown name.
    [[nodiscard]] std::string hint(const std::string& unknown) const;

  private:
    std::vector<std::string> m_names;
    std::vector<std::string> m_electrodes;
};

} // namespace kvsig::tool
