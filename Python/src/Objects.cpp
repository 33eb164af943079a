#include "Objects.h"

#include <qel/Data.h>
#include <qel/Exception.h>
#include <qel/Property.h>
#include <qel/Ref.h>
#include <qel/classification/TextureClassificationModel.h>
#include <qel/geometry/AffineTransformation2D.h>
#include <qel/geometry/AffineTransformation3D.h>
#include <qel/geometry/LineSet3D.h>
#include <qel/geometry/PolynomialOrder2Transformation2D.h>
#include <qel/geometry/PolynomialOrder3Transformation2D.h>
#include <qel/geometry/ProjectiveTransformation2D.h>
#include <qel/geometry/RigidTransformation2D.h>
#include <qel/geometry/RigidTransformation3D.h>
#include <qel/geometry/Transformation2DHandler.h>
#include <qel/geometry/Transformation3DHandler.h>
#include <qel/geometry/Translation2D.h>
#include <qel/geometry/Translation3D.h>
#include <qel/morphology/MorphologicalLut2D.h>
#include <qel/morphology/MorphologicalLut3D.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <typeinfo>

#include <cxxabi.h>

namespace binding {

namespace {

qel::String toQelString(std::string const& text) { return {text.data(), text.size()}; }

bool isPath(py::handle object) { return PyUnicode_Check(object.ptr()) || py::hasattr(object, "__fspath__"); }

// ---- Models

using Model = qel::classification::TextureClassificationModel;

std::shared_ptr<Model> readModel(std::string const& path)
{
    auto const model = std::make_shared<Model>();
    model->read(toQelString(path));
    return model;
}

/// A model that is there: the object itself, or the path of its file.
template <class Pointer> class ModelKind : public Kind
{
public:
    bool fits(qel::BaseProperty& property) const override
    {
        return dynamic_cast<qel::Property<Pointer>*>(&property) != nullptr;
    }
    std::string name(qel::BaseProperty&) const override { return "model, or the path of one"; }
    std::string hint() const override { return "_Model"; }
    void assign(qel::BaseProperty& base, py::handle value, Kept& kept) const override
    {
        std::shared_ptr<Model> model;
        if (isPath(value))
            model = readModel(toText(value));
        else if (py::isinstance<Model>(value))
            model = value.cast<std::shared_ptr<Model>>();
        else if (!value.is_none())
            throw Refusal("it takes a model or the path of one, and not a value of type " + typeName(value));
        static_cast<qel::Property<Pointer>&>(base).set(model.get());
        kept = model;
    }
    py::object value(qel::BaseProperty&, Kept const& kept) const override
    {
        return kept ? py::cast(std::static_pointer_cast<Model>(kept)) : py::none();
    }
};

/// A model that the run makes.
class NewModelKind : public Kind
{
    struct Place
    {
        Model* made = nullptr;
        std::shared_ptr<Model> model;
        ~Place() { delete made; }
    };

public:
    bool fits(qel::BaseProperty& property) const override
    {
        return dynamic_cast<qel::Property<Model**>*>(&property) != nullptr;
    }
    std::string name(qel::BaseProperty&) const override { return "model"; }
    std::string hint() const override { return "_Model"; }
    void assign(qel::BaseProperty&, py::handle value, Kept&) const override
    {
        if (!value.is_none())
            throw Refusal("it is a result, which takes no value");
    }
    void prepare(qel::BaseProperty& base, Kept& kept) const override
    {
        auto const place = std::make_shared<Place>();
        static_cast<qel::Property<Model**>&>(base).set(&place->made);
        kept = place;
    }
    py::object value(qel::BaseProperty&, Kept const& kept) const override
    {
        auto const place = std::static_pointer_cast<Place>(kept);
        if (!place)
            return py::none();
        if (place->made) {
            place->model.reset(place->made);
            place->made = nullptr;
        }
        return place->model ? py::cast(place->model) : py::none();
    }
};

// ---- Look-up tables

/// What tells the two tables apart in Python: the sizes of arrays, and which bit stands for which neighbour.
template <class Table> struct TableForm;
template <> struct TableForm<qel::morphology::MorphologicalLut2D>
{
    static constexpr int dimensions = 2;
    static constexpr unsigned long size = 512;
    static constexpr unsigned char bits[9] = {4, 3, 2, 5, 0, 1, 6, 7, 8};
    using Entry = unsigned char;
};
template <> struct TableForm<qel::morphology::MorphologicalLut3D>
{
    static constexpr int dimensions = 3;
    static constexpr unsigned long size = 1ul << 22;
    static constexpr unsigned char bits[27] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13,
                                               14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26};
    using Entry = int;
};

template <class Table> class TableKind : public Kind
{
    using Form = TableForm<Table>;
    static constexpr std::size_t voxels = std::size(Form::bits);

public:
    bool fits(qel::BaseProperty& property) const override
    {
        return dynamic_cast<qel::Property<Table*>*>(&property) != nullptr;
    }
    std::string name(qel::BaseProperty&) const override
    {
        std::string const cube = Form::dimensions == 2 ? "3 x 3" : "3 x 3 x 3";
        return "path of a table; array of " + std::to_string(Form::size) + " entries; or array of " + cube +
               " (or n x " + cube + ") neighbourhoods that match, where 0 and 1 ask for that value and others for none";
    }
    std::string hint() const override { return "_Table"; }
    void assign(qel::BaseProperty& base, py::handle value, Kept& kept) const override
    {
        auto& property = static_cast<qel::Property<Table*>&>(base);
        if (value.is_none()) {
            property.set(nullptr);
            kept = nullptr;
            return;
        }
        if (isPath(value)) {
            std::string path = toText(value);
            std::string const prefix = "@path:";
            if (path.compare(0, prefix.size(), prefix) != 0)
                path = prefix + path;
            qel::String error;
            if (!property.read(toQelString(path), error))
                throw Refusal(error.length() ? toStdString(error) : "it takes a path, and not " + path);
            kept = nullptr; // the property's own
            return;
        }
        auto const array = py::array_t<long, py::array::c_style | py::array::forcecast>::ensure(value);
        if (!array) {
            PyErr_Clear();
            throw Refusal("it takes a path or an array, and not a value of type " + typeName(value));
        }
        auto const table = std::make_shared<Table>();
        if (array.ndim() == 1 && static_cast<unsigned long>(array.size()) == Form::size) {
            std::vector<typename Form::Entry> entries;
            entries.reserve(Form::size);
            for (unsigned long i = 0; i < Form::size; ++i) {
                long const entry = array.data()[i];
                entries.push_back(static_cast<typename Form::Entry>(Form::dimensions == 2 ? entry != 0 : entry));
            }
            table->buildFromLut(entries.data(), Form::size);
        } else if ((array.ndim() == Form::dimensions || array.ndim() == Form::dimensions + 1) &&
                   isCube(array.shape() + (array.ndim() - Form::dimensions))) {
            long const* entry = array.data();
            for (py::ssize_t i = 0; i < array.size() / static_cast<py::ssize_t>(voxels); ++i) {
                qel::container::Vector<unsigned char> kernel(voxels);
                for (unsigned char const bit : Form::bits) {
                    kernel[bit] = static_cast<unsigned char>(*entry == 0 || *entry == 1 ? *entry : 2);
                    ++entry;
                }
                table->addKernel(kernel);
            }
        } else {
            throw Refusal("it takes a " + name(base));
        }
        property.set(table.get());
        kept = table;
    }
    py::object value(qel::BaseProperty&, Kept const&) const override { return py::none(); }

private:
    static bool isCube(py::ssize_t const* shape)
    {
        for (int axis = 0; axis < Form::dimensions; ++axis) {
            if (shape[axis] != 3)
                return false;
        }
        return true;
    }
};

// ---- Line sets

/// Polylines, which Python shares with the algorithm that made them.
struct LineSet
{
    qel::Ref<qel::geometry::LineSet3D> object;

    LineSet()
        : object(qel::geometry::LineSet3D::New())
    {}
    explicit LineSet(qel::geometry::LineSet3D* lines)
        : object(lines)
    {}
};

std::shared_ptr<LineSet> readLines(std::string const& path)
{
    auto const lines = std::make_shared<LineSet>();
    lines->object->read(toQelString(path));
    return lines;
}

/// A line set: the object itself, or the path of its file. An output is always given one.
template <class Pointer> class LineSetKind : public Kind
{
public:
    bool fits(qel::BaseProperty& property) const override
    {
        return dynamic_cast<qel::Property<Pointer>*>(&property) != nullptr;
    }
    std::string name(qel::BaseProperty&) const override { return "line set"; }
    std::string hint() const override { return "_LineSet"; }
    void assign(qel::BaseProperty& base, py::handle value, Kept& kept) const override
    {
        std::shared_ptr<LineSet> lines;
        if (isPath(value))
            lines = readLines(toText(value));
        else if (py::isinstance<LineSet>(value))
            lines = value.cast<std::shared_ptr<LineSet>>();
        else if (!value.is_none())
            throw Refusal("it takes a line set or the path of one, and not a value of type " + typeName(value));
        point(base, kept, lines);
    }
    void prepare(qel::BaseProperty& base, Kept& kept) const override { point(base, kept, std::make_shared<LineSet>()); }
    py::object value(qel::BaseProperty&, Kept const& kept) const override
    {
        return kept ? py::cast(std::static_pointer_cast<LineSet>(kept)) : py::none();
    }

private:
    static void point(qel::BaseProperty& base, Kept& kept, std::shared_ptr<LineSet> const& lines)
    {
        static_cast<qel::Property<Pointer>&>(base).set(lines ? lines->object.get() : nullptr);
        kept = lines;
    }
};

using Points3D = qel::container::Vector<qel::math::Vector3<double>>;

// The separator is -1.
py::object indicesOf(LineSet const& lines)
{
    auto const& indices = lines.object->getIndices();
    py::array_t<long> array(static_cast<py::ssize_t>(indices.size()));
    for (unsigned long i = 0; i < indices.size(); ++i)
        array.mutable_at(static_cast<py::ssize_t>(i)) = static_cast<long>(indices[i]);
    return array;
}

void setLines(LineSet& lines, py::handle points, py::handle indices)
{
    auto const coords = Conversion<Points3D>::from(points);
    qel::container::Vector<unsigned long> runs;
    for (py::handle const each : toSequence(indices, "indices are whole numbers")) {
        long const index = toInteger(each, -1, static_cast<long>(coords.size()) - 1);
        runs.push_back(static_cast<unsigned long>(index));
    }
    lines.object->setCoords(coords);
    lines.object->setIndices(runs);
}

py::object pointsOf(LineSet const& lines) { return Conversion<Points3D>::to(lines.object->getCoords()); }

py::list runsOf(LineSet const& lines)
{
    py::list all;
    py::list run;
    py::object const points = pointsOf(lines);
    auto const finish = [&] {
        if (!run.empty())
            all.append(points.attr("take")(run, 0));
        run = py::list();
    };
    auto const& indices = lines.object->getIndices();
    for (unsigned long i = 0; i < indices.size(); ++i) {
        if (indices[i] == qel::geometry::LineSet3D::stop)
            finish();
        else
            run.append(indices[i]);
    }
    finish();
    return all;
}

void defineLineSet(py::module_& module)
{
    auto const refused = [](auto const& action) {
        return [action](auto&&... arguments) {
            try {
                return action(std::forward<decltype(arguments)>(arguments)...);
            } catch (Refusal const& refusal) {
                throw py::value_error(refusal.what());
            }
        };
    };
    py::class_<LineSet, std::shared_ptr<LineSet>>(
        module, "LineSet3D", "Polylines in space: points, and runs of indices into them, which are separated by -1.")
        .def(py::init([](py::object const& path) { return readLines(toText(path)); }), py::arg("path"))
        .def(py::init([refused](py::object const& points, py::object const& indices) {
                 auto const lines = std::make_shared<LineSet>();
                 refused([](LineSet& made, py::object const& p, py::object const& i) { setLines(made, p, i); })(
                     *lines, points, indices);
                 return lines;
             }),
             py::arg("points"), py::arg("indices"))
        .def_property_readonly("points", &pointsOf,
                               "All vertices, an array of n x 3: columns, rows, plans, calibrated.")
        .def_property_readonly("indices", &indicesOf,
                               "The lines as runs of indices into the points, with -1 between them.")
        .def_property_readonly("lines", &runsOf, "The lines, an array of points each.")
        .def("__len__", [](LineSet const& self) { return runsOf(self).size(); })
        .def("__eq__",
             [](LineSet const& self, py::object const& other) {
                 return py::isinstance<LineSet>(other) && *self.object == *other.cast<LineSet const&>().object;
             })
        .def(
            "write",
            [](LineSet const& self, py::object const& path, bool overwrite) {
                self.object->write(toQelString(toText(path)), qel::BINARY, overwrite);
            },
            py::arg("path"), py::arg("overwrite") = false, "Writes the lines as an object file.")
        .def(
            "export",
            [](LineSet const& self, py::object const& path) {
                self.object->exportAsKesraMesh(toQelString(toText(path)));
            },
            py::arg("path"), "Writes a text file that mesh viewers read.")
        .def("__reduce__",
             [](py::object const& self) {
                 return py::make_tuple(py::type::of(self), py::make_tuple(self.attr("points"), self.attr("indices")));
             })
        .def("__repr__", [](LineSet const& self) {
            return "<quelide.LineSet3D: " + std::to_string(runsOf(self).size()) + " lines of " +
                   std::to_string(self.object->getCoords().size()) + " points>";
        });
}

// The class of which an object file is: behind the magic and a length of 8 bytes. Empty where it is no such file.
std::string classInFile(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    char magic[4] = {};
    std::uint64_t length = 0;
    file.read(magic, sizeof(magic));
    file.read(reinterpret_cast<char*>(&length), sizeof(length));
    if (!file || std::string(magic, 4) != "QELO" || length > 1000)
        return "";
    std::string name(length, ' ');
    file.read(name.data(), static_cast<std::streamsize>(length));
    return name;
}

// Whatever an object file holds. A model is no qel::Data, which Data::load would make by the name of its class.
py::object load(py::object const& path)
{
    std::string const name = toText(path);
    if (classInFile(name) == "TextureClassificationModel")
        return py::cast(readModel(name));
    qel::Ref<qel::Data> const data = qel::Data::load(toQelString(name));
    if (auto* const lines = dynamic_cast<qel::geometry::LineSet3D*>(data.get()))
        return py::cast(std::make_shared<LineSet>(lines));
    throw py::type_error("quelide has no class for what is in " + name);
}

// ---- Transformations

template <class Object> std::string classNameOf(Object const& object)
{
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> const text(
        abi::__cxa_demangle(typeid(object).name(), nullptr, nullptr, &status), std::free);
    std::string const name = status == 0 ? text.get() : "";
    return name.substr(name.rfind(':') + 1);
}

/// A transformation, with the handler that owns it.
struct Transformation2D
{
    using Point = qel::math::Vector2<double>;
    static constexpr int dimensions = 2;

    qel::geometry::Transformation2DHandler handler;

    template <class T> static void addParameters(qel::geometry::Transformation2D const& base, py::list& parameters)
    {
        if (auto const* const transformation = dynamic_cast<T const*>(&base)) {
            for (unsigned int i = 0; i < T::getNumOfParameter(); ++i)
                parameters.append(transformation->getParam(i));
        }
    }

    static py::tuple parametersOf(qel::geometry::Transformation2D const& base)
    {
        using namespace qel::geometry;
        py::list parameters;
        addParameters<Translation2D>(base, parameters);
        addParameters<RigidTransformation2D>(base, parameters);
        addParameters<AffineTransformation2D>(base, parameters);
        addParameters<ProjectiveTransformation2D>(base, parameters);
        addParameters<PolynomialOrder2Transformation2D>(base, parameters);
        addParameters<PolynomialOrder3Transformation2D>(base, parameters);
        return py::tuple(parameters);
    }

    /// Linear ones: the homogeneous matrix.
    static bool isLinear(qel::geometry::Transformation2D const& base)
    {
        using namespace qel::geometry;
        return !dynamic_cast<ProjectiveTransformation2D const*>(&base) &&
               !dynamic_cast<PolynomialOrder2Transformation2D const*>(&base) &&
               !dynamic_cast<PolynomialOrder3Transformation2D const*>(&base);
    }
};

struct Transformation3D
{
    using Point = qel::math::Vector3<double>;
    static constexpr int dimensions = 3;

    qel::geometry::Transformation3DHandler handler;

    static py::tuple parametersOf(qel::geometry::Transformation3D const&) { return py::tuple(); }
    static bool isLinear(qel::geometry::Transformation3D const&) { return true; }
};

template <class T> py::object mapPoints(T const& self, py::handle object)
{
    auto const points = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(object);
    if (!points || points.ndim() < 1 || points.ndim() > 2 || points.shape(points.ndim() - 1) != T::dimensions) {
        PyErr_Clear();
        throw py::value_error("points are an array of n x " + std::to_string(T::dimensions) + " numbers");
    }
    py::array_t<double> mapped(std::vector<py::ssize_t>(points.shape(), points.shape() + points.ndim()));
    for (py::ssize_t i = 0; i < points.size(); i += T::dimensions) {
        typename T::Point point(points.data() + i);
        self.handler.get()->map(point);
        for (int axis = 0; axis < T::dimensions; ++axis)
            mapped.mutable_data()[i + axis] = point[static_cast<unsigned long>(axis)];
    }
    return mapped;
}

// From the images of the origin and of the unit vectors.
template <class T> py::object matrixOf(T const& self)
{
    if (!T::isLinear(*self.handler.get()))
        return py::none();
    int constexpr n = T::dimensions;
    py::array_t<double> matrix({n + 1, n + 1});
    typename T::Point shift;
    self.handler.get()->map(shift);
    for (int column = 0; column <= n; ++column) {
        typename T::Point point;
        if (column < n) {
            point[static_cast<unsigned long>(column)] = 1;
            self.handler.get()->map(point);
        }
        for (int row = 0; row < n; ++row) {
            auto const axis = static_cast<unsigned long>(row);
            matrix.mutable_at(row, column) = column < n ? point[axis] - shift[axis] : shift[axis];
        }
        matrix.mutable_at(n, column) = column == n;
    }
    return matrix;
}

template <class T, class Handler> class TransformationKind : public Kind
{
public:
    bool fits(qel::BaseProperty& property) const override
    {
        return dynamic_cast<qel::Property<Handler*>*>(&property) != nullptr;
    }
    std::string name(qel::BaseProperty&) const override { return "transformation"; }
    std::string hint() const override { return "_Transformation" + std::to_string(T::dimensions) + "D"; }
    void assign(qel::BaseProperty& base, py::handle value, Kept& kept) const override
    {
        if (!py::isinstance<T>(value))
            throw Refusal("it takes a transformation, and not a value of type " + typeName(value));
        auto const handler = std::make_shared<Handler>(value.cast<T const&>().handler);
        static_cast<qel::Property<Handler*>&>(base).set(handler.get());
        kept = handler;
    }
    void prepare(qel::BaseProperty& base, Kept& kept) const override
    {
        auto const handler = std::make_shared<Handler>();
        static_cast<qel::Property<Handler*>&>(base).set(handler.get());
        kept = handler;
    }
    py::object value(qel::BaseProperty&, Kept const& kept) const override
    {
        auto const handler = std::static_pointer_cast<Handler>(kept);
        return handler && handler->get() ? py::cast(T{*handler}) : py::none();
    }
};

template <class T> void defineTransformation(py::module_& module, char const* name)
{
    py::class_<T>(module, name, "A mapping of points. It is called with an array of n points, or with one.")
        .def("__call__", &mapPoints<T>, py::arg("points"))
        .def_property_readonly_static("dimensions", [](py::object const&) { return T::dimensions; })
        .def_property_readonly(
            "kind", [](T const& self) { return classNameOf(*self.handler.get()); },
            "The name of its class in the library.")
        .def_property_readonly(
            "parameters", [](T const& self) { return T::parametersOf(*self.handler.get()); },
            "Its parameters by index; those in space have none but their matrix.")
        .def_property_readonly("matrix", &matrixOf<T>,
                               "The homogeneous matrix, for points as columns; None where it is not linear.")
        .def("__repr__", [](T const& self) {
            return "<quelide " + classNameOf(*self.handler.get()) + " " +
                   std::string(py::str(py::object(T::parametersOf(*self.handler.get())))) + ">";
        });
}

} // namespace

void addObjectKinds(std::vector<std::unique_ptr<Kind const>>& table)
{
    table.push_back(std::make_unique<ModelKind<Model*>>());
    table.push_back(std::make_unique<ModelKind<Model const*>>());
    table.push_back(std::make_unique<NewModelKind>());
    table.push_back(std::make_unique<TableKind<qel::morphology::MorphologicalLut2D>>());
    table.push_back(std::make_unique<TableKind<qel::morphology::MorphologicalLut3D>>());
    table.push_back(std::make_unique<LineSetKind<qel::geometry::LineSet3D*>>());
    table.push_back(std::make_unique<LineSetKind<qel::geometry::LineSet3D const*>>());
    table.push_back(std::make_unique<TransformationKind<Transformation2D, qel::geometry::Transformation2DHandler>>());
    table.push_back(std::make_unique<TransformationKind<Transformation3D, qel::geometry::Transformation3DHandler>>());
}

void defineObjects(py::module_& module)
{
    py::class_<Model, std::shared_ptr<Model>>(
        module, "TextureClassificationModel",
        "A classifier of textures. Made by TextureClassificationCreate, or read from a file.")
        .def(py::init([](py::object const& path) { return readModel(toText(path)); }), py::arg("path"))
        .def(
            "write",
            [](Model const& self, py::object const& path, bool overwrite) {
                self.write(toQelString(toText(path)), qel::BINARY, overwrite);
            },
            py::arg("path"), py::arg("overwrite") = false, "Writes the model as an object file.")
        .def_property_readonly(
            "report", [](Model const& self) { return toStdString(self.getInfo()); },
            "A text for people, of a model that was trained.");
    defineLineSet(module);
    module.def("load", &load, py::arg("path"), "Reads an object file: a model, or a line set.");
    defineTransformation<Transformation2D>(module, "Transformation2D");
    defineTransformation<Transformation3D>(module, "Transformation3D");
}

} // namespace binding
