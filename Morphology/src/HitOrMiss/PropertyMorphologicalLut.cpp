#include <qel/morphology/PropertyMorphologicalLut2D.h>
#include <qel/morphology/PropertyMorphologicalLut3D.h>

#include "Core/private/Property.impl.h"
#include "Morphology/private/LutFile.h"
#include "Morphology/private/MorphologicalLut2DPrivate.h"
#include "Morphology/private/MorphologicalLut3DPrivate.h"

#include <exception>
#include <memory>
#include <string_view>
#include <vector>

namespace qel {

// Exported by the attribute of the template: as bases, their classes are complete already.
template class Property<morphology::MorphologicalLut2D*>;
template class Property<morphology::MorphologicalLut3D*>;

} // namespace qel

namespace qel::morphology {

namespace {

/// `Word`: that of the file.
template <class Word, class Lut>
bool readLut(Property<Lut*>& property, Lut*& own, unsigned long size, String const& text, String& error)
{
    error = text;
    constexpr std::string_view prefix = "@path:";
    std::string_view const whole(text.c_str(), text.length());
    if (property.isLocked() || whole.substr(0, prefix.size()) != prefix)
        return false;
    auto lut = std::make_unique<Lut>();
    try {
        std::vector<Word> words(size);
        readLutFile(text.c_str() + prefix.size(), words.data(), size * sizeof(Word));
        lut->buildFromLut(words.data(), size);
    } catch (std::exception const& failure) {
        error = failure.what();
        return false;
    }
    property.set(lut.get());
    delete own;
    own = lut.release();
    return true;
}

template <class Lut> void destroyOwn(Property<Lut*>& property, Lut*& own)
{
    if (property.isLocked())
        return;
    if (property.get() == own)
        property.set(nullptr);
    delete own;
    own = nullptr;
}

} // namespace

#define QEL_DEFINE_LUT_PROPERTY(Class, Lut, Word, size)                                                                \
    Class::Class()                                                                                                     \
        : m_own(nullptr)                                                                                               \
    {}                                                                                                                 \
    Class::~Class() { delete m_own; }                                                                                  \
    Class& Class::operator=(Lut* value)                                                                                \
    {                                                                                                                  \
        set(value);                                                                                                    \
        return *this;                                                                                                  \
    }                                                                                                                  \
    Class& Class::operator=(Class const& other)                                                                        \
    {                                                                                                                  \
        set(other.get());                                                                                              \
        return *this;                                                                                                  \
    }                                                                                                                  \
    bool Class::read(String const& text, String& error) { return readLut<Word>(*this, m_own, size, text, error); }     \
    void Class::destroyPrivateAllocation() { destroyOwn(*this, m_own); }
QEL_DEFINE_LUT_PROPERTY(PropertyMorphologicalLut2D, MorphologicalLut2D, unsigned char, MorphologicalLut2DPrivate::size)
QEL_DEFINE_LUT_PROPERTY(PropertyMorphologicalLut3D, MorphologicalLut3D, int, MorphologicalLut3DPrivate::size)
#undef QEL_DEFINE_LUT_PROPERTY

} // namespace qel::morphology
