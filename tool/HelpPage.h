#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace kvsig::tool {

/// `--help`: what the thing is, how it is called, its commands or options in groups, examples.
class HelpPage : public CLI::FormatterBase {
  public:
    [[nodiscard]] std::string make_help(const CLI::App* app, std::string name,
                                        CLI::AppFormatMode mode) const override;
};

/// "kvsig plot FILE... -o FILE [OPTIONS]"
[[nodiscard]] std::string usageOf(const CLI::App& app, const std::string& name);

} // namespace kvsig::tool
