#pragma once

#include <string>

namespace kvsig::tool {

/// A line on stderr that counts up in place ("writing x.edf: 42 %"); silent when `quiet` or when
/// stderr is no terminal. The destructor clears the line.
class Progress {
  public:
    Progress(std::string what, bool quiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `done` of `all`; writes only when the percentage changes.
    void show(double done, double all);

  private:
    std::string m_what;
    bool m_active;
    int m_percent = -1;
};

} // namespace kvsig::tool
