#pragma once

#include "Core/private/VoxelTypeOf.h"

#include <boost/mpl/for_each.hpp>
#include <boost/mpl/vector.hpp>

#include <type_traits>

namespace qel {

using AllVoxelTypes = boost::mpl::vector<unsigned char, unsigned short, unsigned int, unsigned long, signed char, short,
                                         int, long, float, double>;
using IntegerVoxelTypes =
    boost::mpl::vector<unsigned char, unsigned short, unsigned int, unsigned long, signed char, short, int, long>;
/// The types that have a packet form.
using PacketVoxelTypes =
    boost::mpl::vector<unsigned char, unsigned short, unsigned int, signed char, short, int, float, double>;
/// The types of a mask or of a thresholded image.
using BinaryVoxelTypes = boost::mpl::vector<unsigned char, unsigned short, signed char, short>;

namespace tmpl_dispatch {

/// Calls `visit(std::type_identity<T>())` for the type of the list that has this voxel type; does nothing for any
/// other.
template <class TypeList, class Visit> void visitType(int type, Visit const& visit)
{
    boost::mpl::for_each<TypeList>([&]<class T>(T) {
        if (VoxelTypeOf<T>::value == type)
            visit(std::type_identity<T>());
    });
}

template <class TypeList> bool isInList(int type)
{
    bool found = false;
    visitType<TypeList>(type, [&](auto) { found = true; });
    return found;
}

/// Calls `Dispatcher::run<T>(arg)` for the voxel type.
template <class TypeList, class Dispatcher, class Arg> struct Visitor1Args
{
    void operator()(int type, Arg arg) const
    {
        visitType<TypeList>(type, [&]<class T>(std::type_identity<T>) { Dispatcher::template run<T>(arg); });
    }
};

/// Calls `Dispatcher::run<T1, T2>(arg)` for the two voxel types.
template <class TypeList1, class TypeList2, class Dispatcher, class Arg> struct Visitor2Args
{
    void operator()(int type1, int type2, Arg arg) const
    {
        visitType<TypeList1>(type1, [&]<class T1>(std::type_identity<T1>) {
            visitType<TypeList2>(type2,
                                 [&]<class T2>(std::type_identity<T2>) { Dispatcher::template run<T1, T2>(arg); });
        });
    }
};

} // namespace tmpl_dispatch

inline bool hasPacketForm(VoxelTypes type) { return tmpl_dispatch::isInList<PacketVoxelTypes>(type); }

} // namespace qel
