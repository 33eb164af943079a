#include "Conversions.h"

#include <qel/EnumInfo.h>

namespace binding {

namespace {

// numpy's own integers and 0-dimensional arrays are numbers, too; floats are none here.
py::object asIndex(py::handle object)
{
    PyObject* const index = PyNumber_Index(object.ptr());
    if (!index) {
        PyErr_Clear();
        throw Refusal("it takes a whole number, and not a value of type " + typeName(object));
    }
    return py::reinterpret_steal<py::object>(index);
}

std::string shown(py::handle object) { return py::str(object); }

// Points are tuples; rows of an array are lists, or an array.
bool isPoints(py::handle object)
{
    if (!PyTuple_Check(object.ptr()) && !PyList_Check(object.ptr()))
        return false;
    auto const elements = py::reinterpret_borrow<py::sequence>(object);
    return elements.size() == 0 || PyTuple_Check(py::object(elements[0]).ptr());
}

// `add` takes the offsets of each point, and its weight.
template <class Add> void readPoints(py::handle object, std::size_t dimensions, Add const& add)
{
    for (py::handle const point : object) {
        std::string const wanted = "a point is " + std::to_string(dimensions) + " offsets and a weight";
        py::list const numbers = toSequence(point, wanted);
        if (numbers.size() != dimensions + 1)
            throw Refusal(wanted);
        long const z = dimensions == 3 ? Conversion<long>::from(numbers[2]) : 0;
        add(Conversion<long>::from(numbers[0]), Conversion<long>::from(numbers[1]), z, toReal(numbers[dimensions]));
    }
}

// An array of weights around its middle. `add` takes the index of an element along each axis, and its weight.
template <class Add> void readWeights(py::handle object, int dimensions, Add const& add)
{
    auto const array = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(object);
    if (!array) {
        PyErr_Clear();
        throw Refusal("it takes an array of weights of " + std::to_string(dimensions) + " dimensions");
    }
    if (array.ndim() != dimensions)
        throw Refusal("it takes an array of weights of " + std::to_string(dimensions) + " dimensions, and not of " +
                      std::to_string(array.ndim()));
    for (int axis = 0; axis < dimensions; ++axis) {
        if (array.shape(axis) % 2 == 0)
            throw Refusal("its array of weights must have odd sides, for its middle is the voxel itself",
                          "give a kernel of even sides as points: [(column, row, weight), ...]");
    }
    long const columns = array.shape(dimensions - 1);
    long const rows = array.shape(dimensions - 2);
    long const plans = dimensions == 3 ? array.shape(0) : 1;
    double const* weight = array.data();
    for (long plan = 0; plan < plans; ++plan)
        for (long row = 0; row < rows; ++row)
            for (long column = 0; column < columns; ++column)
                add(column - columns / 2, row - rows / 2, plan - plans / 2, *weight++);
}

} // namespace

std::string typeName(py::handle object) { return Py_TYPE(object.ptr())->tp_name; }

long toInteger(py::handle object, long low, long high)
{
    py::object const index = asIndex(object);
    int overflow = 0;
    long const value = PyLong_AsLongAndOverflow(index.ptr(), &overflow);
    if (overflow != 0 || value < low || value > high)
        throw Refusal("it takes a whole number from " + std::to_string(low) + " to " + std::to_string(high) +
                      ", and not " + shown(object));
    return value;
}

unsigned long toUnsigned(py::handle object, unsigned long high)
{
    py::object const index = asIndex(object);
    unsigned long const value = PyLong_AsUnsignedLong(index.ptr());
    bool const failed = PyErr_Occurred() != nullptr;
    PyErr_Clear();
    if (failed || value > high)
        throw Refusal("it takes a whole number from 0 to " + std::to_string(high) + ", and not " + shown(object));
    return value;
}

double toReal(py::handle object)
{
    double const value = PyFloat_AsDouble(object.ptr());
    if (value == -1 && PyErr_Occurred()) {
        PyErr_Clear();
        throw Refusal("it takes a number, and not a value of type " + typeName(object));
    }
    return value;
}

bool toBool(py::handle object)
{
    if (object.ptr() == Py_True)
        return true;
    if (object.ptr() == Py_False)
        return false;
    std::string const type = typeName(object);
    if (type == "numpy.bool_" || type == "numpy.bool")
        return PyObject_IsTrue(object.ptr()) == 1;
    if (PyIndex_Check(object.ptr())) {
        long const value = toInteger(object, std::numeric_limits<long>::min(), std::numeric_limits<long>::max());
        if (value == 0 || value == 1)
            return value == 1;
    }
    throw Refusal("it takes True or False, and not " + shown(object));
}

std::string toText(py::handle object)
{
    PyObject* const path = PyOS_FSPath(object.ptr());
    if (!path) {
        PyErr_Clear();
        throw Refusal("it takes a text or a path, and not a value of type " + typeName(object));
    }
    PyObject* bytes = nullptr;
    int const done = PyUnicode_FSConverter(path, &bytes);
    Py_DECREF(path);
    if (!done) {
        PyErr_Clear();
        throw Refusal("it takes a text that a file system can have");
    }
    std::string text(PyBytes_AS_STRING(bytes), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes)));
    Py_DECREF(bytes);
    return text;
}

std::string toStdString(qel::String const& text) { return {text.c_str(), text.length()}; }

int toEnumeration(py::handle object, EnumInfo const& info)
{
    if (PyUnicode_Check(object.ptr())) {
        qel::String const label = toText(object).c_str();
        if (!info.exists(label))
            throw Refusal("\"" + toStdString(label) + "\" is none of its labels");
        return info.getValueFromLabel(label);
    }
    auto const number =
        static_cast<int>(toInteger(object, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    if (!info.exists(number))
        throw Refusal("the number " + std::to_string(number) + " has no label");
    return number;
}

py::object fromEnumeration(int value, EnumInfo const& info)
{
    if (!info.exists(value))
        return py::int_(value);
    return py::str(toStdString(info.getLabelFromValue(value)));
}

py::list toSequence(py::handle object, std::string const& what)
{
    // An array becomes numbers of Python at once: rows of it, too, for an array of points.
    py::object source = py::reinterpret_borrow<py::object>(object);
    if (py::isinstance<py::array>(object))
        source = object.attr("tolist")();
    if (!PySequence_Check(source.ptr()) || PyUnicode_Check(source.ptr()) || PyBytes_Check(source.ptr())) {
        if (!PyIter_Check(source.ptr()) && !py::hasattr(source, "__iter__"))
            throw Refusal(what + ", and not a value of type " + typeName(object));
        if (PyUnicode_Check(source.ptr()) || PyBytes_Check(source.ptr()))
            throw Refusal(what + ", and not a text");
    }
    PyObject* const list = PySequence_List(source.ptr());
    if (!list) {
        PyErr_Clear();
        throw Refusal(what + ", and not a value of type " + typeName(object));
    }
    return py::reinterpret_steal<py::list>(list);
}

py::object Conversion<qel::String>::to(qel::String const& value)
{
    return py::reinterpret_steal<py::object>(
        PyUnicode_DecodeFSDefaultAndSize(value.c_str(), static_cast<py::ssize_t>(value.length())));
}

qel::segmentation::TextureFeatureTypes Conversion<qel::segmentation::TextureFeatureTypes>::from(py::handle object)
{
    return static_cast<qel::segmentation::TextureFeatureTypes>(
        toEnumeration(object, qel::segmentation::textureFeatureTypesInfo()));
}

py::object Conversion<qel::segmentation::TextureFeatureTypes>::to(qel::segmentation::TextureFeatureTypes value)
{
    return fromEnumeration(value, qel::segmentation::textureFeatureTypesInfo());
}

qel::Scalar Conversion<qel::Scalar>::from(py::handle object)
{
    if (!PyIndex_Check(object.ptr()))
        return toReal(object);
    // An unsigned number only where it must be: scalars of different types are different.
    std::string const type = typeName(object);
    py::object const index = asIndex(object);
    int overflow = 0;
    long const value = PyLong_AsLongAndOverflow(index.ptr(), &overflow);
    if (overflow == 0 && type.find("uint") == std::string::npos)
        return value;
    return toUnsigned(object, std::numeric_limits<unsigned long>::max());
}

py::object Conversion<qel::Scalar>::to(qel::Scalar const& value)
{
    switch (value.getType()) {
    case qel::INTEGER:
        return py::int_(value.getIntValue());
    case qel::UNSIGNED_INTEGER:
        return py::int_(value.getUIntValue());
    default:
        return py::float_(value.getRealValue());
    }
}

qel::ScalarArray Conversion<qel::ScalarArray>::from(py::handle object)
{
    py::list const elements = toSequence(object, "it takes a sequence of numbers");
    bool isWhole = true;
    for (py::handle const element : elements)
        isWhole = isWhole && PyIndex_Check(element.ptr());
    qel::ScalarArray value(0, isWhole ? qel::INTEGER : qel::REAL);
    for (py::handle const element : elements) {
        if (isWhole)
            value.pushBack(Conversion<long>::from(element));
        else
            value.pushBack(toReal(element));
    }
    return value;
}

py::object Conversion<qel::ScalarArray>::to(qel::ScalarArray const& value)
{
    py::list all;
    for (unsigned long i = 0; i < value.size(); ++i)
        all.append(Conversion<qel::Scalar>::to(value.getScalarValueAt(i)));
    char const* const type = value.getType() == qel::REAL      ? "float64"
                             : value.getType() == qel::INTEGER ? "int64"
                                                               : "uint64";
    return py::module_::import("numpy").attr("array")(all, type);
}

qel::kernel::Kernel2D Conversion<qel::kernel::Kernel2D>::from(py::handle object)
{
    qel::kernel::Kernel2D kernel;
    auto const add = [&](long column, long row, long, double weight) { kernel.addPoint(column, row, weight); };
    if (isPoints(object))
        readPoints(object, 2, add);
    else
        readWeights(object, 2, add);
    return kernel;
}

py::object Conversion<qel::kernel::Kernel2D>::to(qel::kernel::Kernel2D const& value)
{
    py::tuple points(value.getNumOfPoints());
    for (unsigned long i = 0; i < value.getNumOfPoints(); ++i) {
        auto const offset = value.getOffset(i);
        points[i] = py::make_tuple(offset.x, offset.y, value.getWeight(i));
    }
    return points;
}

qel::kernel::Kernel3D Conversion<qel::kernel::Kernel3D>::from(py::handle object)
{
    qel::kernel::Kernel3D kernel;
    auto const add = [&](long column, long row, long plan, double weight) {
        kernel.addPoint(column, row, plan, weight);
    };
    if (isPoints(object))
        readPoints(object, 3, add);
    else
        readWeights(object, 3, add);
    return kernel;
}

py::object Conversion<qel::kernel::Kernel3D>::to(qel::kernel::Kernel3D const& value)
{
    py::tuple points(value.getNumOfPoints());
    for (unsigned long i = 0; i < value.getNumOfPoints(); ++i) {
        auto const offset = value.getOffset(i);
        points[i] = py::make_tuple(offset.x, offset.y, offset.z, value.getWeight(i));
    }
    return points;
}

} // namespace binding
