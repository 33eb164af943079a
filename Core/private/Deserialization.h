#pragma once

#include <qel/String.h>

namespace qel {

class Scalar;

namespace math {
template <class T> class Vector2;
template <class T> class Vector3;
template <class T> class Vector4;
} // namespace math

namespace container {
template <class T> class Vector;
} // namespace container

namespace kernel {
class Kernel2D;
class Kernel3D;
} // namespace kernel

/// Reads a value from its text form.
///
/// `doIt` copies the text to `rest`, and answers whether the text was read and `value` stored; otherwise `value` stays
/// as it was. This general form reads nothing: pointers, images, arrays of scalars and matrices have no text form. The
/// forms that exist are specialisations; a type of another module has its own there.
template <class T> struct Deserialization
{
    static bool doIt(String const& text, T& value, String& rest)
    {
        static_cast<void>(value);
        rest = text;
        return false;
    }
};

// A number as a text stream reads it: what follows its leading part is passed over.
template <> bool Deserialization<int>::doIt(String const& text, int& value, String& rest);
template <> bool Deserialization<unsigned int>::doIt(String const& text, unsigned int& value, String& rest);
template <> bool Deserialization<long>::doIt(String const& text, long& value, String& rest);
template <> bool Deserialization<unsigned long>::doIt(String const& text, unsigned long& value, String& rest);
template <> bool Deserialization<double>::doIt(String const& text, double& value, String& rest);

/// "true" or "false".
template <> bool Deserialization<bool>::doIt(String const& text, bool& value, String& rest);
/// The whole text is a number: real with a ".", else signed with a leading "-" or "+", else unsigned.
template <> bool Deserialization<Scalar>::doIt(String const& text, Scalar& value, String& rest);
/// The text itself.
template <> bool Deserialization<String>::doIt(String const& text, String& value, String& rest);

/// "@v2:1_2". For `int`, `unsigned int`, `long`, `unsigned long`, `float`, `double`; each component is a whole number.
template <class E> struct Deserialization<math::Vector2<E>>
{
    static bool doIt(String const& text, math::Vector2<E>& value, String& rest);
};
/// "@v3:1_2_3", as for two.
template <class E> struct Deserialization<math::Vector3<E>>
{
    static bool doIt(String const& text, math::Vector3<E>& value, String& rest);
};
/// "@v4:1_2_3_4", as for two.
template <class E> struct Deserialization<math::Vector4<E>>
{
    static bool doIt(String const& text, math::Vector4<E>& value, String& rest);
};

/// "@v:1#2#3", "@v:@v2:1_2#@v2:3_4"; "@v:" is an empty one. For every element type of container::Vector; a number is
/// whole.
template <class E> struct Deserialization<container::Vector<E>>
{
    static bool doIt(String const& text, container::Vector<E>& value, String& rest);
};

/// "@kernel2D:0_0_1+1_0_0.5": column, row and weight of each point, of which there is one at least. Without the prefix
/// the kernel stays as it was; an entry that is no point leaves it with the points before.
template <> bool Deserialization<kernel::Kernel2D>::doIt(String const& text, kernel::Kernel2D& value, String& rest);
/// "@kernel3D:0_0_0_1+1_0_0_0.5": the same with plans.
template <> bool Deserialization<kernel::Kernel3D>::doIt(String const& text, kernel::Kernel3D& value, String& rest);

} // namespace qel
