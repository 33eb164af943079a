#include "Algorithm.h"
#include "MappedFile.h"
#include "Objects.h"

#include <qel/AlgoBorderInfluence.h>
#include <qel/DirectionTypes.h>
#include <qel/EnumInfo.h>
#include <qel/Exception.h>

#include <pybind11/stl.h>

#include <system_error>

namespace binding {

namespace {

char const* const levelNames[] = {"scalar", "sse", "avx", "gpu"};

/// A class of algorithms, called like a function.
class Function
{
public:
    explicit Function(std::string const& name)
        : m_record(recordOf(name))
    {}

    py::object call(py::args const& positional, py::kwargs const& named) const
    {
        Algorithm algorithm(m_record);
        RunOptions options;
        assign(algorithm, options, positional, named);
        return algorithm.run(options);
    }

    /// How far around a voxel these parameters make the algorithm read, in both directions of each axis.
    py::tuple reach(py::kwargs const& named) const
    {
        Algorithm algorithm(m_record);
        RunOptions options;
        assign(algorithm, options, py::args(), named);
        return reachOf(algorithm);
    }

    static py::tuple reachOf(Algorithm const& algorithm)
    {
        qel::AlgoBorderInfluence const influence = algorithm.algorithm().getAlgoBorderInfluence();
        py::tuple axes(numOfAxes);
        for (int axis = 0; axis < numOfAxes; ++axis)
            axes[static_cast<std::size_t>(axis)] =
                py::make_tuple(influence.getNumOfVoxels(static_cast<qel::DirectionTypes>(2 * axis)),
                               influence.getNumOfVoxels(static_cast<qel::DirectionTypes>(2 * axis + 1)));
        return axes;
    }

private:
    void assign(Algorithm& algorithm, RunOptions& options, py::args const& positional, py::kwargs const& named) const
    {
        std::size_t const given = positional.size();
        if (given > m_record.properties.size()) {
            PyErr_SetString(PyExc_TypeError, (m_record.name + "() has " + std::to_string(m_record.properties.size()) +
                                              " properties, but " + std::to_string(given) + " values were given")
                                                 .c_str());
            throw py::error_already_set();
        }
        for (std::size_t i = 0; i < given; ++i)
            algorithm.set(i, PyTuple_GET_ITEM(positional.ptr(), static_cast<py::ssize_t>(i)));
        PyObject* name;
        PyObject* value;
        py::ssize_t place = 0;
        while (PyDict_Next(named.ptr(), &place, &name, &value)) {
            if (options.take(m_record, name, value))
                continue;
            std::size_t const index = algorithm.indexOf(name);
            if (index < given) {
                PyErr_SetString(
                    PyExc_TypeError,
                    (m_record.name + "() got two values for the property " + m_record.properties[index].name).c_str());
                throw py::error_already_set();
            }
            algorithm.set(index, value);
        }
    }

    AlgorithmRecord& m_record;
};

py::list describe()
{
    py::list all;
    for (auto const& record : allRecords()) {
        Algorithm const algorithm(*record);
        py::list properties;
        for (std::size_t i = 0; i < record->properties.size(); ++i) {
            PropertyRecord const& property = record->properties[i];
            qel::BaseProperty& base = property.of(algorithm.algorithm());
            py::dict entry;
            entry["name"] = property.name;
            entry["isOutput"] = property.isOutput;
            entry["kind"] = property.kind->name(base);
            entry["hint"] = property.kind->hint();
            entry["isImage"] = property.kind->role() != ImageRole::None;
            entry["default"] = property.isOutput ? py::none() : algorithm.get(i);
            entry["labels"] = property.kind->labels(base);
            properties.append(entry);
        }
        py::list levels;
        for (int level = 0; level < 4; ++level) {
            if (algorithm.algorithm().isOptimLevelSupported(static_cast<qel::OptimLevelType>(level)))
                levels.append(levelNames[level]);
        }
        py::dict entry;
        entry["name"] = record->name;
        entry["namespace"] = record->nameSpace;
        entry["properties"] = properties;
        entry["levels"] = levels;
        all.append(entry);
    }
    return all;
}

RunOptions optionsFrom(AlgorithmRecord const& record, py::kwargs const& named)
{
    RunOptions options;
    for (auto const& [name, value] : named) {
        if (!options.take(record, name, value)) {
            PyErr_SetString(PyExc_TypeError, ("run() has no argument \"" + std::string(py::str(name)) + "\"").c_str());
            throw py::error_already_set();
        }
    }
    return options;
}

void defineAlgorithm(py::module_& module)
{
    py::class_<Algorithm>(module, "Algorithm", "An algorithm object: its properties are its attributes.")
        .def(py::init([](std::string const& name) { return std::make_unique<Algorithm>(recordOf(name)); }))
        .def(
            "run", [](Algorithm& self, py::kwargs const& named) { return self.run(optionsFrom(self.record(), named)); },
            "Runs with the properties as they are, and gives back the results, which the outputs have, too. Takes "
            "out=,\n"
            "dtype=, progress=, threads=, level= and extra_memory= as the functions do.")
        .def("cancel", &Algorithm::cancel,
             "Asks a run to stop, from another thread: it then raises Cancelled. False where none is under way.")
        .def_property_readonly("running", &Algorithm::isRunning, "Whether a run is under way.")
        .def_property_readonly("progress", &Algorithm::progress, "Percent done, from any thread.")
        .def_property_readonly(
            "reach", &Function::reachOf,
            "How many voxels beyond a voxel are read: a pair (before, behind) for each axis, columns first.")
        .def("__getattr__", [](Algorithm const& self, py::str const& name) { return self.get(self.indexOf(name)); })
        .def("__setattr__",
             [](Algorithm& self, py::str const& name, py::object const& value) { self.set(self.indexOf(name), value); })
        .def("__dir__",
             [](py::object const& self) {
                 py::list names = py::module_::import("builtins").attr("object").attr("__dir__")(self);
                 for (PropertyRecord const& property : self.cast<Algorithm&>().record().properties)
                     names.append(property.name);
                 return names;
             })
        .def("__repr__", [](Algorithm const& self) {
            std::string text = "<quelide algorithm " + self.record().name;
            for (std::size_t i = 0; i < self.record().properties.size(); ++i) {
                PropertyRecord const& property = self.record().properties[i];
                if (property.isOutput)
                    continue;
                py::object const value = self.get(i);
                text += ", " + property.name + "=";
                if (property.kind->role() != ImageRole::None && !value.is_none())
                    text += "...";
                else
                    text += std::string(py::repr(value));
            }
            return text + ">";
        });
}

void defineMappedFile(py::module_& module)
{
    py::class_<MappedFile>(module, "MappedFile", py::buffer_protocol(),
                           "The bytes of a file, in memory only as far as they are in use.")
        .def(py::init<std::string const&, bool, unsigned long>(), py::arg("path"), py::arg("writable") = false,
             py::arg("size") = 0)
        .def_buffer([](MappedFile& self) {
            return py::buffer_info(self.data(), 1, py::format_descriptor<unsigned char>::format(), 1,
                                   {static_cast<py::ssize_t>(self.size())}, {py::ssize_t(1)}, !self.isWritable());
        })
        .def("give_back", &MappedFile::giveBack, py::call_guard<py::gil_scoped_release>())
        .def("flush", &MappedFile::flush, py::call_guard<py::gil_scoped_release>());
}

} // namespace

} // namespace binding

PYBIND11_MODULE(_quelide, module)
{
    using namespace binding;

    module.doc() = "The part of quelide that is not written in Python.";
    py::register_exception_translator([](std::exception_ptr pointer) {
        try {
            if (pointer)
                std::rethrow_exception(pointer);
        } catch (qel::Exception const& error) {
            raise(error);
        } catch (std::system_error const& error) {
            auto const made = py::reinterpret_steal<py::object>(PyObject_CallFunction(
                PyExc_OSError, "iss", error.code().value(), error.code().message().c_str(), error.what()));
            if (made)
                PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(made.ptr())), made.ptr());
        }
    });
    py::class_<Function>(module, "Function")
        .def(py::init<std::string const&>())
        .def("__call__", &Function::call)
        .def("reach", &Function::reach);
    dtypeOf(qel::QEL_UINT8); // made while no other thread can be here
    defineAlgorithm(module);
    defineMappedFile(module);
    defineObjects(module);
    module.def("describe", &describe);
    module.def("connect",
               [](py::object const& imageClass, py::object const& makeResultType, py::object const& refuse,
                  py::object const& cancelled, py::object const& libraryError, py::object const& asProgress) {
                   pythonSide() = {imageClass, makeResultType, refuse, cancelled, libraryError, asProgress};
               });
}
