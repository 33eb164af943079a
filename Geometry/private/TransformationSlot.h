#pragma once

#include <atomic>
#include <memory>

namespace qel::geometry {

/// The slot that the copies of a handler share. It counts them.
template <class Transformation> class TransformationSlot
{
public:
    Transformation* get() const { return m_held.get(); }

    void set(Transformation* transformation)
    {
        if (transformation != m_held.get())
            m_held.reset(transformation);
    }

    Transformation* takeOwnership()
    {
        Transformation* const address = m_held.get();
        m_held.reset();
        return address;
    }

    void addHandler() { ++m_numOfHandlers; }
    /// True where that was the last one.
    bool removeHandler() { return --m_numOfHandlers == 0; }

private:
    std::unique_ptr<Transformation> m_held;
    std::atomic<unsigned int> m_numOfHandlers{1};
};

} // namespace qel::geometry
