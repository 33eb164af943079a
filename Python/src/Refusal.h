#pragma once

#include <stdexcept>
#include <string>

namespace binding {

/// A value does not suit a property. Who knows the property's name makes a Python exception of it.
class Refusal : public std::runtime_error
{
public:
    explicit Refusal(std::string const& reason, std::string remedy = "")
        : std::runtime_error(reason)
        , m_remedy(std::move(remedy))
    {}

    /// What to do instead; may be empty.
    std::string const& remedy() const { return m_remedy; }

private:
    std::string m_remedy;
};

} // namespace binding
