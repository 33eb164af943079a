#include "NumpyImage.h"

#include "MappedFile.h"

#include <qel/String.h>
#include <qel/helper/copyBytes.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include <sys/mman.h>

namespace binding {

namespace {

// One voxel after the other, from memory of any stride and alignment into a row, or back.
template <class Word>
void gather(unsigned char const* from, long stride, unsigned char* __restrict to, unsigned long count)
{
    for (unsigned long x = 0; x < count; ++x) {
        Word word;
        std::memcpy(&word, from + static_cast<long>(x) * stride, sizeof(Word));
        std::memcpy(to + x * sizeof(Word), &word, sizeof(Word));
    }
}

template <class Word>
void scatter(unsigned char const* __restrict from, unsigned char* to, long stride, unsigned long count)
{
    for (unsigned long x = 0; x < count; ++x) {
        Word word;
        std::memcpy(&word, from + x * sizeof(Word), sizeof(Word));
        std::memcpy(to + static_cast<long>(x) * stride, &word, sizeof(Word));
    }
}

struct TypeName
{
    qel::VoxelTypes type;
    char kind;
    int size;
    char const* name;
};

constexpr TypeName types[] = {
    {qel::QEL_UINT8, 'u', 1, "uint8"},     {qel::QEL_UINT16, 'u', 2, "uint16"}, {qel::QEL_UINT32, 'u', 4, "uint32"},
    {qel::QEL_UINT64, 'u', 8, "uint64"},   {qel::QEL_INT8, 'i', 1, "int8"},     {qel::QEL_INT16, 'i', 2, "int16"},
    {qel::QEL_INT32, 'i', 4, "int32"},     {qel::QEL_INT64, 'i', 8, "int64"},   {qel::QEL_FLOAT32, 'f', 4, "float32"},
    {qel::QEL_FLOAT64, 'f', 8, "float64"},
};

} // namespace

char const* nameOf(qel::Interpretations interpretation)
{
    switch (interpretation) {
    case qel::QEL_BINARY:
        return "binary";
    case qel::QEL_LABEL:
        return "label";
    default:
        return "value";
    }
}

py::dtype dtypeOf(qel::VoxelTypes type)
{
    // Kept for good: making one costs more than a small image, and none may be freed after the interpreter is gone.
    static auto* const all = [] {
        auto* const made = new std::array<py::dtype, std::size(types)>;
        for (std::size_t i = 0; i < std::size(types); ++i)
            (*made)[i] = py::dtype(types[i].name);
        return made;
    }();
    auto const index = static_cast<std::size_t>(type);
    if (index >= std::size(types))
        throw py::value_error("no numpy type for this voxel type");
    return (*all)[index];
}

bool voxelTypeOf(py::dtype const& dtype, qel::VoxelTypes& type)
{
    char const order = py::detail::array_descriptor_proxy(dtype.ptr())->byteorder;
    if (order != '=' && order != '|' && order != '<')
        return false;
    char const kind = dtype.kind();
    auto const size = dtype.itemsize();
    for (TypeName const& entry : types) {
        if (entry.kind == kind && entry.size == size) {
            type = entry.type;
            return true;
        }
    }
    return false;
}

NumpyImage::NumpyImage(qel::VoxelTypes type, int numOfDimensions)
    : m_array(py::reinterpret_steal<py::array>(py::handle()))
    , m_type(type)
    , m_voxelSize(static_cast<long>(qel::memory::sizeOfVoxelType(type)))
    , m_numOfDimensions(std::clamp(numOfDimensions, 1, numOfAxes))
    , m_isNew(true)
{
    for (Axis& axis : m_axes)
        axis.size = 0;
}

NumpyImage::NumpyImage(py::array array, qel::VoxelTypes type)
    : m_array(std::move(array))
    , m_type(type)
    , m_voxelSize(static_cast<long>(qel::memory::sizeOfVoxelType(type)))
    , m_numOfDimensions(static_cast<int>(m_array.ndim()))
    , m_isNew(false)
{
    takeLayout();
}

void NumpyImage::takeLayout()
{
    m_data = static_cast<unsigned char*>(const_cast<void*>(m_array.data()));
    auto const dimensions = static_cast<int>(m_array.ndim());
    for (int axis = 0; axis < numOfAxes; ++axis) {
        bool const exists = axis < dimensions;
        m_axes[axis].size = exists ? static_cast<unsigned long>(m_array.shape(dimensions - 1 - axis)) : 1;
        m_axes[axis].stride = exists ? m_array.strides(dimensions - 1 - axis) : 0;
    }
    bool isAligned = reinterpret_cast<std::uintptr_t>(m_data) % static_cast<unsigned long>(m_voxelSize) == 0;
    for (Axis const& axis : m_axes)
        isAligned = isAligned && (axis.size <= 1 || axis.stride % m_voxelSize == 0);
    m_isDirect = isAligned && (m_axes[0].stride == m_voxelSize || m_axes[0].size <= 1);
    unsigned char const* begin;
    unsigned char const* end;
    bounds(begin, end);
    m_isLarge = static_cast<unsigned long>(end - begin) >= qel::helper::largeImage;
    m_file = begin == end ? nullptr : MappedFile::at(begin);
}

bool NumpyImage::isSameMemoryAs(NumpyImage const& other) const
{
    if (m_data != other.m_data || m_type != other.m_type || m_isNew || other.m_isNew)
        return false;
    for (int axis = 0; axis < numOfAxes; ++axis) {
        if (m_axes[axis].size != other.m_axes[axis].size ||
            (m_axes[axis].size > 1 && m_axes[axis].stride != other.m_axes[axis].stride))
            return false;
    }
    return true;
}

void NumpyImage::bounds(unsigned char const*& begin, unsigned char const*& end) const
{
    begin = end = m_data;
    for (Axis const& axis : m_axes) {
        if (axis.size == 0 || !m_data) {
            end = begin;
            return;
        }
    }
    for (Axis const& axis : m_axes) {
        long const reach = static_cast<long>(axis.size - 1) * axis.stride;
        (reach < 0 ? begin : end) += reach;
    }
    end += m_voxelSize;
}

unsigned long NumpyImage::getNumOf(qel::Components const& component) const
{
    return component < numOfAxes ? m_axes[component].size : 0;
}

bool NumpyImage::setOriginOf(qel::Components const& component, double origin)
{
    if (component >= numOfAxes)
        return false;
    m_axes[component].origin = origin;
    return true;
}

double NumpyImage::getOriginOf(qel::Components const& component) const
{
    return component < numOfAxes ? m_axes[component].origin : 0;
}

bool NumpyImage::setSpacingOf(qel::Components const& component, double spacing)
{
    if (component >= numOfAxes)
        return false;
    m_axes[component].spacing = spacing;
    return true;
}

double NumpyImage::getSpacingOf(qel::Components const& component) const
{
    return component < numOfAxes ? m_axes[component].spacing : 0;
}

bool NumpyImage::setSpatialUnitName(qel::String const& name)
{
    m_unit = name.c_str();
    return true;
}

bool NumpyImage::setTemporalUnitName(qel::String const& name)
{
    m_timeUnit = name.c_str();
    return true;
}

bool NumpyImage::setInterpretation(qel::Interpretations const& interpretation)
{
    m_interpretation = interpretation;
    return true;
}

bool NumpyImage::getPreferedSize(unsigned long&, unsigned long&, unsigned long&, unsigned long&, unsigned long&)
{
    return false;
}

unsigned char* NumpyImage::voxel(unsigned long numOfVoxels, unsigned long column, unsigned long row, unsigned long plan,
                                 unsigned long time, unsigned long spectral) const
{
    if (column > m_axes[0].size || numOfVoxels > m_axes[0].size - column || row >= m_axes[1].size ||
        plan >= m_axes[2].size || time >= m_axes[3].size || spectral >= m_axes[4].size || !m_data)
        return nullptr;
    return m_data + static_cast<long>(column) * m_axes[0].stride + static_cast<long>(row) * m_axes[1].stride +
           static_cast<long>(plan) * m_axes[2].stride + static_cast<long>(time) * m_axes[3].stride +
           static_cast<long>(spectral) * m_axes[4].stride;
}

bool NumpyImage::readRowAt(unsigned long numOfVoxels, unsigned char* destination, unsigned long column,
                           unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral) const
{
    unsigned char const* const from = voxel(numOfVoxels, column, row, plan, time, spectral);
    if (!from)
        return false;
    long const stride = m_axes[0].stride;
    unsigned long const bytes = numOfVoxels * static_cast<unsigned long>(m_voxelSize);
    if (stride == m_voxelSize)
        qel::helper::copyBytes(destination, from, bytes);
    else if (m_voxelSize == 1)
        gather<std::uint8_t>(from, stride, destination, numOfVoxels);
    else if (m_voxelSize == 2)
        gather<std::uint16_t>(from, stride, destination, numOfVoxels);
    else if (m_voxelSize == 4)
        gather<std::uint32_t>(from, stride, destination, numOfVoxels);
    else
        gather<std::uint64_t>(from, stride, destination, numOfVoxels);
    if (m_file)
        m_file->touched(bytes);
    return true;
}

bool NumpyImage::writeRowAt(unsigned long numOfVoxels, unsigned char const* source, unsigned long column,
                            unsigned long row, unsigned long plan, unsigned long time, unsigned long spectral)
{
    unsigned char* const to = voxel(numOfVoxels, column, row, plan, time, spectral);
    if (!to)
        return false;
    long const stride = m_axes[0].stride;
    unsigned long const bytes = numOfVoxels * static_cast<unsigned long>(m_voxelSize);
    if (stride == m_voxelSize)
        (m_isLarge ? qel::helper::copyBytesPastCaches : qel::helper::copyBytes)(to, source, bytes);
    else if (m_voxelSize == 1)
        scatter<std::uint8_t>(source, to, stride, numOfVoxels);
    else if (m_voxelSize == 2)
        scatter<std::uint16_t>(source, to, stride, numOfVoxels);
    else if (m_voxelSize == 4)
        scatter<std::uint32_t>(source, to, stride, numOfVoxels);
    else
        scatter<std::uint64_t>(source, to, stride, numOfVoxels);
    if (m_file)
        m_file->touched(bytes);
    return true;
}

bool NumpyImage::getRowAt(unsigned long numOfVoxels, unsigned char*& row, unsigned long column, unsigned long rowIndex,
                          unsigned long plan, unsigned long time, unsigned long spectral) const
{
    // Of a mapped file no pointers: what is read through them could not be counted.
    if (!m_isDirect || m_file)
        return false;
    unsigned char* const first = voxel(numOfVoxels, column, rowIndex, plan, time, spectral);
    if (!first)
        return false;
    row = first;
    return true;
}

bool NumpyImage::getConstRowAt(unsigned long numOfVoxels, unsigned char const*& row, unsigned long column,
                               unsigned long rowIndex, unsigned long plan, unsigned long time,
                               unsigned long spectral) const
{
    unsigned char* first = nullptr;
    if (!getRowAt(numOfVoxels, first, column, rowIndex, plan, time, spectral))
        return false;
    row = first;
    return true;
}

bool NumpyImage::reserve(qel::VoxelTypes const& type, unsigned long columns, unsigned long rows, unsigned long plans,
                         unsigned long timeSeries, unsigned long spectralSeries)
{
    std::array<unsigned long, numOfAxes> const sizes = {columns, rows, plans, timeSeries, spectralSeries};
    bool fits = type == m_type && m_data;
    for (int axis = 0; axis < numOfAxes; ++axis)
        fits = fits && sizes[axis] == m_axes[axis].size;
    if (fits)
        return true;
    if (!m_isNew || type > qel::QEL_FLOAT64)
        return false;
    unsigned long bytes = qel::memory::sizeOfVoxelType(type);
    for (unsigned long const size : sizes) {
        if (__builtin_mul_overflow(bytes, size, &bytes) || bytes > PTRDIFF_MAX)
            return false;
    }
    if (isWithoutVoxels) {
        for (int axis = 0; axis < numOfAxes; ++axis)
            m_axes[axis].size = sizes[axis];
        m_type = type;
        return true;
    }
    py::gil_scoped_acquire const lock;
    int dimensions = m_numOfDimensions;
    for (int axis = dimensions; axis < numOfAxes; ++axis) {
        if (sizes[axis] != 1)
            dimensions = axis + 1;
    }
    std::vector<py::ssize_t> shape;
    for (int axis = dimensions; axis-- > 0;)
        shape.push_back(static_cast<py::ssize_t>(sizes[axis]));
    m_array = py::array(dtypeOf(type), shape);
    // numpy asks for huge pages. In a very large image each row of a block begins another one, which the system clears
    // as a whole: a started block then takes half a second, and Ctrl-C with it.
    if (bytes >= 1ul << 30) {
        auto const begin = reinterpret_cast<std::uintptr_t>(m_array.data()) & ~std::uintptr_t(4095);
        madvise(reinterpret_cast<void*>(begin), bytes, MADV_NOHUGEPAGE);
    }
    m_type = type;
    m_voxelSize = static_cast<long>(qel::memory::sizeOfVoxelType(type));
    takeLayout();
    return true;
}

} // namespace binding
