#include "Algorithm.h"

#include "Interrupts.h"

#include <qel/point_operations/BitShift.h>
#include <qel/point_operations/InvertImage.h>

#include <tbb/task_arena.h>

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <thread>
#include <typeinfo>

#include <cxxabi.h>

namespace binding {

namespace {

std::string nameSpaceOf(qel::BaseAlgorithm const& algorithm)
{
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> const text(
        abi::__cxa_demangle(typeid(algorithm).name(), nullptr, nullptr, &status), std::free);
    std::string name = status == 0 ? text.get() : "";
    std::string const own = "qel::";
    if (name.compare(0, own.size(), own) == 0)
        name.erase(0, own.size());
    std::size_t const end = name.rfind("::");
    return end == std::string::npos ? "" : name.substr(0, end);
}

// Members that are public, but no listed properties.
void addMembers(AlgorithmRecord& record, qel::BaseAlgorithm& algorithm)
{
    using qel::point_operations::BitShift;
    using qel::point_operations::InvertImage;
    auto const add = [&](char const* name, qel::BaseProperty& (*member)(qel::BaseAlgorithm&)) {
        PropertyRecord property;
        property.name = name;
        property.member = member;
        property.kind = &kindOf(member(algorithm));
        record.properties.push_back(property);
    };
    using Base = qel::BaseAlgorithm;
    using Member = qel::BaseProperty&;
    if (dynamic_cast<InvertImage*>(&algorithm))
        add("numOfBits", [](Base& base) -> Member { return static_cast<InvertImage&>(base).numOfBits; });
    if (dynamic_cast<BitShift*>(&algorithm)) {
        add("shiftCount", [](Base& base) -> Member { return static_cast<BitShift&>(base).shiftCount; });
        add("shiftRight", [](Base& base) -> Member { return static_cast<BitShift&>(base).shiftRight; });
    }
}

std::unique_ptr<AlgorithmRecord> makeRecord(qel::AlgoInfo* info)
{
    qel::Ref<qel::BaseAlgorithm> const algorithm(info->createInstance());
    auto record = std::make_unique<AlgorithmRecord>();
    record->name = toStdString(info->getName());
    record->nameSpace = nameSpaceOf(*algorithm);
    record->info = info;
    auto const add = [&](qel::BaseProperty* base, unsigned long index, bool isOutput) {
        if (!base)
            return;
        PropertyRecord property;
        property.name = toStdString(base->getName());
        property.isOutput = isOutput;
        property.kind = &kindOf(*base);
        property.index = index;
        record->properties.push_back(property);
    };
    for (unsigned long i = 0; i < algorithm->getNumOfInputProperties(); ++i)
        add(algorithm->getInputProperty(i), i, false);
    addMembers(*record, *algorithm);
    for (unsigned long i = 0; i < algorithm->getNumOfOutputProperties(); ++i)
        add(algorithm->getOutputProperty(i), i, true);
    for (std::size_t i = 0; i < record->properties.size(); ++i) {
        record->indexOf[py::str(record->properties[i].name)] = py::int_(i);
        record->numOfResults += record->properties[i].isOutput;
    }
    return record;
}

bool isMainThread()
{
    static PyObject* const mainThread =
        py::object(py::module_::import("threading").attr("main_thread")).release().ptr();
    static PyObject* const name = py::str("ident").release().ptr();
    auto const thread = py::reinterpret_steal<py::object>(PyObject_CallNoArgs(mainThread));
    if (!thread)
        throw py::error_already_set();
    auto const ident = py::reinterpret_steal<py::object>(PyObject_GetAttr(thread.ptr(), name));
    if (!ident || ident.is_none()) {
        PyErr_Clear();
        return false;
    }
    return PyLong_AsUnsignedLong(ident.ptr()) == PyThread_get_thread_ident();
}

enum class OnCtrlC
{
    Nothing,
    Interrupt,
    AskPython
};

// What Python does on Ctrl-C. With its usual handler a run is stopped at once. Another one is asked while the run goes
// on, for it may raise nothing, and the run is then not to be stopped.
OnCtrlC onCtrlC()
{
    if (!isMainThread())
        return OnCtrlC::Nothing;
    static PyObject* const module = py::module_::import("_signal").release().ptr();
    static PyObject* const get = py::handle(module).attr("getsignal").cast<py::object>().release().ptr();
    static PyObject* const usual = py::handle(module).attr("default_int_handler").cast<py::object>().release().ptr();
    static PyObject* const number = py::int_(SIGINT).release().ptr();
    auto const handler = py::reinterpret_steal<py::object>(PyObject_CallOneArg(get, number));
    if (!handler)
        throw py::error_already_set();
    if (handler.ptr() == usual)
        return OnCtrlC::Interrupt;
    return PyCallable_Check(handler.ptr()) ? OnCtrlC::AskPython : OnCtrlC::Nothing;
}

qel::VoxelTypes voxelTypeFrom(py::handle dtype)
{
    auto const wanted = py::dtype::from_args(py::reinterpret_borrow<py::object>(dtype));
    qel::VoxelTypes type;
    if (!voxelTypeOf(wanted, type))
        throw Refusal("there are no voxels of type " + std::string(py::str(py::object(wanted))));
    return type;
}

// Of an array with calibration: one number for each axis of the array, the last one being columns.
template <class Set> void readAxes(py::handle values, Set const& set)
{
    auto const all = py::reinterpret_borrow<py::tuple>(values);
    auto const count = static_cast<int>(all.size());
    for (int axis = 0; axis < std::min(count, numOfAxes); ++axis)
        set(static_cast<qel::Components>(axis),
            PyFloat_AsDouble(all[static_cast<std::size_t>(count - 1 - axis)].ptr()));
}

template <class Get> py::tuple writeAxes(int count, Get const& get)
{
    py::tuple all(count);
    for (int axis = 0; axis < count; ++axis)
        all[static_cast<std::size_t>(count - 1 - axis)] = py::float_(get(static_cast<qel::Components>(axis)));
    return all;
}

bool interpretationFrom(py::handle name, qel::Interpretations& interpretation)
{
    if (name.is_none())
        return false;
    std::string const text = py::str(name);
    for (auto const candidate : {qel::QEL_BINARY, qel::QEL_LABEL, qel::QEL_VALUE}) {
        if (text == nameOf(candidate)) {
            interpretation = candidate;
            return true;
        }
    }
    throw Refusal("an image has no interpretation \"" + text + "\"", "it is binary, label or value");
}

} // namespace

qel::BaseProperty& PropertyRecord::of(qel::BaseAlgorithm& algorithm) const
{
    if (member)
        return member(algorithm);
    return isOutput ? *algorithm.getOutputProperty(index) : *algorithm.getInputProperty(index);
}

std::vector<std::unique_ptr<AlgorithmRecord>> const& allRecords()
{
    // For good: Python objects must not be released after the interpreter is gone.
    static auto const& all = [&]() -> std::vector<std::unique_ptr<AlgorithmRecord>> const& {
        auto& made = *new std::vector<std::unique_ptr<AlgorithmRecord>>;
        for (unsigned long i = 0; i < qel::AlgoInfo::getNumOfAlgorithms(); ++i)
            made.push_back(makeRecord(qel::AlgoInfo::fromIndex(i)));
        return made;
    }();
    return all;
}

AlgorithmRecord& recordOf(std::string const& name)
{
    for (auto const& record : allRecords()) {
        if (record->name == name)
            return *record;
    }
    throw py::key_error(name);
}

PythonSide& pythonSide()
{
    static auto& only = *new PythonSide;
    return only;
}

bool RunOptions::take(AlgorithmRecord const& record, py::handle name, py::handle value)
{
    auto const is = [&](char const* option) { return PyUnicode_CompareWithASCIIString(name.ptr(), option) == 0; };
    auto const borrowed = py::reinterpret_borrow<py::object>(value);
    bool const isGiven = !value.is_none();
    try {
        if (is("out")) {
            if (isGiven)
                out = borrowed;
        } else if (is("progress")) {
            if (isGiven && value.ptr() != Py_False)
                progress = borrowed;
        } else if (is("dtype")) {
            if (isGiven)
                dtype = voxelTypeFrom(value);
        } else if (is("threads")) {
            if (isGiven)
                threads = static_cast<int>(toInteger(value, 1, 4096));
        } else if (is("extra_memory")) {
            if (isGiven)
                extraMemory = static_cast<int>(toInteger(value, 0, std::numeric_limits<int>::max()));
        } else if (is("level")) {
            level.reset();
            std::string const text = isGiven ? std::string(py::str(value)) : "auto";
            if (text == "scalar")
                level = qel::SCALAR;
            else if (text == "sse")
                level = qel::VEC_SSE;
            else if (text == "avx")
                level = qel::VEC_AVX;
            else if (text == "gpu")
                level = qel::GPU;
            else if (text != "auto")
                throw Refusal("there is no level \"" + text + "\"", "it is auto, scalar, sse, avx or gpu");
        } else {
            return false;
        }
    } catch (Refusal const& refusal) {
        py::object const error =
            pythonSide().refuse(record.name, borrowed.is_none() ? py::none() : py::reinterpret_borrow<py::object>(name),
                                refusal.what(), refusal.remedy());
        PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
        throw py::error_already_set();
    }
    return true;
}

Algorithm::Algorithm(AlgorithmRecord& record)
    : m_record(record)
    , m_algorithm(record.info->createInstance())
    , m_slots(record.properties.size())
{}

Algorithm::~Algorithm() = default;

void Algorithm::refuse(std::size_t index, std::string const& reason, std::string const& remedy) const
{
    py::object const error = pythonSide().refuse(m_record.name, m_record.properties[index].name, reason, remedy);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
    throw py::error_already_set();
}

std::size_t Algorithm::indexOf(py::handle name) const
{
    PyObject* const index = PyDict_GetItemWithError(m_record.indexOf.ptr(), name.ptr());
    if (!index) {
        if (PyErr_Occurred())
            throw py::error_already_set();
        py::object const error = pythonSide().refuse(m_record.name, name, py::none(), py::none());
        PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
        throw py::error_already_set();
    }
    return PyLong_AsSize_t(index);
}

void Algorithm::set(std::size_t index, py::handle value)
{
    if (m_isBusy)
        refuse(index, "it is locked while the algorithm runs", "wait for the run, or take another object");
    PropertyRecord const& property = m_record.properties[index];
    try {
        if (property.kind->role() != ImageRole::None) {
            setImage(index, value);
        } else if (property.isOutput) {
            throw Refusal("it is a result, which takes no value");
        } else {
            property.kind->assign(property.of(*m_algorithm), value, m_slots[index].kept);
            m_slots[index].given = py::reinterpret_borrow<py::object>(value);
        }
    } catch (Refusal const& refusal) {
        refuse(index, refusal.what(), refusal.remedy());
    }
}

py::object Algorithm::get(std::size_t index) const
{
    PropertyRecord const& property = m_record.properties[index];
    Slot const& slot = m_slots[index];
    if (property.kind->role() != ImageRole::None)
        return slot.given ? slot.given : py::none();
    return property.kind->value(property.of(*m_algorithm), slot.kept);
}

std::shared_ptr<NumpyImage> Algorithm::imageOver(std::size_t index, py::handle object, bool isWritten,
                                                 bool& isBool) const
{
    auto array = py::reinterpret_borrow<py::object>(object);
    if (!py::isinstance<py::array>(array)) {
        if (!py::hasattr(array, "__array_interface__") && !PyObject_CheckBuffer(array.ptr()))
            throw Refusal("an image is a numpy array or a quelide.Image, and not a value of type " + typeName(object),
                          py::hasattr(array, "dask") ? "quelide.dask.map runs on arrays of Dask"
                                                     : "make an array of it by numpy.asarray(...)");
        array = py::module_::import("numpy").attr("asarray")(array);
    }
    auto voxels = py::reinterpret_borrow<py::array>(array);
    if (typeName(voxels) == "MaskedArray")
        throw Refusal("its mask would be lost", "give array.filled(...), or the voxels alone: numpy.asarray(array)");
    if (voxels.ndim() < 1 || voxels.ndim() > numOfAxes)
        throw Refusal("an image has one to five axes, and not " + std::to_string(voxels.ndim()));
    if (isWritten && !voxels.writeable())
        throw Refusal("this array is read-only", "give a copy, or an array with the flag WRITEABLE");
    py::dtype const dtype = voxels.dtype();
    isBool = dtype.kind() == 'b';
    if (isBool) {
        if (isWritten)
            throw Refusal("results are no array of bool", "give an array of uint8");
        voxels = py::reinterpret_borrow<py::array>(voxels.attr("view")(dtypeOf(qel::QEL_UINT8)));
    }
    qel::VoxelTypes type = qel::QEL_UINT8;
    if (!isBool && !voxelTypeOf(dtype, type)) {
        std::string const name = py::str(py::object(dtype));
        qel::VoxelTypes native;
        if (voxelTypeOf(py::reinterpret_borrow<py::dtype>(dtype.attr("newbyteorder")("=")), native))
            throw Refusal("the bytes of " + name + " are swapped, and voxels are read where they are",
                          "convert with array.astype(array.dtype.newbyteorder(\"=\"))");
        throw Refusal("there are no voxels of type " + name,
                      "convert with array.astype(...) to an integer of 8 to 64 bits, float32 or float64");
    }
    auto image = std::make_shared<NumpyImage>(voxels, type);
    // The very image object that another property has: so the library knows of a run in place.
    for (std::size_t other = 0; other < m_slots.size(); ++other) {
        if (other != index && m_slots[other].image && m_slots[other].image->isSameMemoryAs(*image))
            return m_slots[other].image;
    }
    if (isWritten) {
        for (py::ssize_t axis = 0; axis < voxels.ndim(); ++axis) {
            if (voxels.strides(axis) == 0 && voxels.shape(axis) > 1)
                throw Refusal("voxels of this array share memory, and cannot all be written", "give a copy");
        }
    }
    return image;
}

void Algorithm::setImage(std::size_t index, py::handle value)
{
    Slot& slot = m_slots[index];
    PropertyRecord const& property = m_record.properties[index];
    bool const isWritten = property.kind->role() == ImageRole::Write;
    slot.image = nullptr;
    slot.isWrapped = false;
    slot.given = py::reinterpret_borrow<py::object>(value);
    if (value.is_none())
        return;
    try {
        bool const isWrapped = PyObject_IsInstance(value.ptr(), pythonSide().imageClass.ptr()) == 1;
        auto const array = isWrapped ? py::object(value.attr("array")) : py::reinterpret_borrow<py::object>(value);
        slot.image = imageOver(index, array, isWritten, slot.isBool);
        slot.isWrapped = isWrapped;
        readCalibration(index);
    } catch (...) {
        slot.given = py::object();
        throw;
    }
}

void Algorithm::readCalibration(std::size_t index)
{
    Slot const& slot = m_slots[index];
    NumpyImage& image = *slot.image;
    // In place, the calibration is that of the input.
    for (std::size_t other = 0; other < index; ++other) {
        if (m_slots[other].image == slot.image)
            return;
    }
    image.isInterpreted = false;
    if (slot.isWrapped) {
        py::handle const value = slot.given;
        readAxes(value.attr("spacing"), [&](auto axis, double v) { image.setSpacingOf(axis, v); });
        readAxes(value.attr("origin"), [&](auto axis, double v) { image.setOriginOf(axis, v); });
        image.setSpatialUnitName(std::string(py::str(value.attr("unit"))).c_str());
        image.setTemporalUnitName(std::string(py::str(value.attr("time_unit"))).c_str());
        qel::Interpretations interpretation;
        if (interpretationFrom(value.attr("interpretation"), interpretation)) {
            image.setInterpretation(interpretation);
            image.isInterpreted = true;
        }
    }
    if (!image.isInterpreted)
        image.setInterpretation(slot.isBool ? qel::QEL_BINARY : m_record.properties[index].assumed);
}

void Algorithm::prepareOutputs(RunOptions const& options)
{
    std::size_t const none = m_slots.size();
    std::size_t onlyOutput = none;
    std::size_t numOfOutputs = 0;
    int dimensions = 0;
    std::optional<qel::VoxelTypes> inputType;
    m_anyWrapped = false;
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
        PropertyRecord const& property = m_record.properties[i];
        m_anyWrapped = m_anyWrapped || m_slots[i].isWrapped;
        if (property.kind->role() == ImageRole::None)
            continue;
        // It may have been changed since it was given, also by an earlier run.
        if (m_slots[i].image && !m_slots[i].image->isNew())
            readCalibration(i);
        if (property.isOutput) {
            onlyOutput = i;
            ++numOfOutputs;
        } else if (m_slots[i].image && dimensions == 0) {
            dimensions = m_slots[i].image->numOfDimensions();
            inputType = m_slots[i].image->getVoxelType();
        }
    }
    if (options.out) {
        if (numOfOutputs != 1) {
            py::object const error = pythonSide().refuse(
                m_record.name, "out", "there is not one output image but " + std::to_string(numOfOutputs),
                numOfOutputs == 0 ? "" : "give each by its own name");
            PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
            throw py::error_already_set();
        }
        set(onlyOutput, options.out);
        m_anyWrapped = m_anyWrapped || m_slots[onlyOutput].isWrapped;
    }
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
        PropertyRecord const& property = m_record.properties[i];
        Slot& slot = m_slots[i];
        if (!property.isOutput)
            continue;
        if (property.kind->role() == ImageRole::None) {
            property.kind->prepare(property.of(*m_algorithm), slot.kept);
            continue;
        }
        // What a run made belongs to whoever has it by now: a further run makes another one.
        bool const isOld = slot.image && slot.image->isNew();
        if (slot.given && !isOld)
            continue;
        qel::VoxelTypes const type = options.dtype           ? *options.dtype
                                     : property.newType      ? *property.newType
                                     : inputType.has_value() ? *inputType
                                                             : qel::QEL_UINT8;
        slot.given = py::object();
        slot.isWrapped = false;
        slot.image = std::make_shared<NumpyImage>(type, dimensions == 0 ? 2 : dimensions);
    }
}

void Algorithm::refuseOverlaps() const
{
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
        NumpyImage const* const written = m_slots[i].image.get();
        if (!written || written->isNew() || m_record.properties[i].kind->role() != ImageRole::Write)
            continue;
        unsigned char const* begin;
        unsigned char const* end;
        written->bounds(begin, end);
        for (std::size_t j = 0; j < m_slots.size(); ++j) {
            NumpyImage const* const other = m_slots[j].image.get();
            if (j == i || !other || other == written || other->isNew())
                continue;
            unsigned char const* otherBegin;
            unsigned char const* otherEnd;
            other->bounds(otherBegin, otherEnd);
            if (end <= otherBegin || otherEnd <= begin)
                continue;
            // The same memory, but other voxels at the same coordinates: they would be overwritten before they are
            // read.
            bool shares = true;
            try {
                shares = py::module_::import("numpy")
                             .attr("shares_memory")(written->array(), other->array(), py::arg("max_work") = 10000)
                             .cast<bool>();
            } catch (py::error_already_set const&) { // too hard to tell
            }
            if (shares)
                refuse(i,
                       "its memory overlaps with that of " + m_record.properties[j].name +
                           ", but they are not the same voxels",
                       "give a copy of one of them");
        }
    }
}

void Algorithm::probe()
{
    // The rules tell which types an output may have, but only by refusing others. They are tried with each end of the
    // types, once and for all: what a call before this one was given must not show.
    struct Restore
    {
        std::vector<Slot>& slots;
        std::vector<std::shared_ptr<NumpyImage>> images;
        ~Restore()
        {
            for (std::size_t i = 0; i < slots.size(); ++i)
                slots[i].image = images[i];
        }
    } restore{m_slots, {}};
    for (Slot const& slot : m_slots)
        restore.images.push_back(slot.image);
    for (qel::VoxelTypes const type : {qel::QEL_FLOAT64, qel::QEL_UINT8}) {
        for (std::size_t attempt = 0; attempt < 2 * m_slots.size(); ++attempt) {
            for (std::size_t i = 0; i < m_slots.size(); ++i) {
                PropertyRecord const& property = m_record.properties[i];
                // Voxels that were given are left as they are.
                if (property.isOutput && m_slots[i].image) {
                    m_slots[i].image = std::make_shared<NumpyImage>(property.newType.value_or(type), 2);
                    m_slots[i].image->isWithoutVoxels = true;
                }
            }
            connectImages();
            try {
                m_algorithm->applyAllRules();
                break;
            } catch (qel::Exception const& error) {
                if (!adaptType(error) && !adaptInterpretation(error))
                    return; // what is wrong is wrong for the run, too
            }
        }
    }
    m_record.isProbed = true;
}

bool Algorithm::adaptType(qel::Exception const& error)
{
    std::string const text = toStdString(error.getInfoLevel(0).message);
    std::string const phrase = "\" supports only data type(s): ";
    std::size_t const supports = text.find(phrase);
    if (supports == std::string::npos)
        return false;
    std::size_t const begin = text.rfind('"', supports - 1) + 1;
    std::string const name = text.substr(begin, supports - begin);
    std::string const list = text.substr(supports + phrase.size(), text.find(". Current") - supports - phrase.size());
    for (PropertyRecord& property : m_record.properties) {
        if (property.name != name || !property.isOutput || property.newType)
            continue;
        // Any integer, and no real: labels, of which there may be many.
        std::string const first = list.substr(0, list.find(','));
        bool const isAnyInteger = first == "uint8" && list.find("int64") != std::string::npos;
        qel::VoxelTypes type;
        if (!voxelTypeOf(py::dtype(isAnyInteger ? "uint32" : first), type))
            return false;
        property.newType = type;
        return true;
    }
    return false;
}

void Algorithm::connectImages()
{
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
        PropertyRecord const& property = m_record.properties[i];
        if (property.kind->role() == ImageRole::None)
            continue;
        qel::BaseProperty& base = property.of(*m_algorithm);
        NumpyImage* const image = m_slots[i].image.get();
        if (property.kind->role() == ImageRole::Write)
            static_cast<qel::Property<qel::ImageModel*>&>(base).set(image);
        else
            static_cast<qel::Property<qel::ImageModel const*>&>(base).set(image);
    }
}

bool Algorithm::adaptInterpretation(qel::Exception const& error)
{
    // An array does not say what it is: it is taken for what the rule asks for.
    std::string const text = toStdString(error.getInfoLevel(0).message);
    std::size_t const supports = text.find("\" supports QEL_");
    if (supports == std::string::npos)
        return false;
    std::size_t const begin = text.rfind('"', supports - 1) + 1;
    std::string const name = text.substr(begin, supports - begin);
    std::string const wanted = text.substr(supports + sizeof("\" supports ") - 1);
    std::string const allowed = wanted.substr(0, wanted.find(". Current"));
    bool const takesLabels = allowed.find("QEL_LABEL") != std::string::npos;
    bool const takesBinary = allowed.find("QEL_BINARY") != std::string::npos;
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
        NumpyImage* const image = m_slots[i].image.get();
        if (m_record.properties[i].name != name || !image)
            continue;
        // A mask is a label image of one label, but labels are no mask.
        qel::Interpretations const interpretation = takesLabels && !(takesBinary && m_slots[i].isBool) ? qel::QEL_LABEL
                                                    : takesBinary                                      ? qel::QEL_BINARY
                                                                                                       : qel::QEL_VALUE;
        if (image->isInterpreted || image->getInterpretation() == interpretation)
            return false;
        image->setInterpretation(interpretation);
        if (!m_slots[i].isBool)
            m_record.properties[i].assumed = interpretation;
        return true;
    }
    return false;
}

void Algorithm::computeWith(std::optional<int> threads)
{
    if (!threads) {
        m_algorithm->run();
        return;
    }
    tbb::task_arena arena(*threads);
    arena.execute([this] { m_algorithm->run(); });
}

void Algorithm::executeHere(RunningRun& run, std::optional<int> threads)
{
    std::optional<CtrlC> ctrlC;
    if (onCtrlC() == OnCtrlC::Interrupt) {
        ctrlC.emplace(run);
        // One that came before the handler stood.
        if (PyErr_CheckSignals() != 0)
            throw py::error_already_set();
    }
    {
        py::gil_scoped_release const unlocked;
        computeWith(threads);
    }
    ctrlC.reset();
    if (run.isCancelled() && PyErr_CheckSignals() != 0)
        throw py::error_already_set();
}

void Algorithm::executePolled(RunningRun& run, std::optional<int> threads, py::object const& progress)
{
    // The work has a thread of its own, which has as many others at its side as this one would have; this one asks and
    // tells, in Python.
    std::mutex mutex;
    std::condition_variable finished;
    bool isDone = false;
    std::exception_ptr failure;
    std::thread worker([&] {
        try {
            computeWith(threads);
        } catch (...) {
            failure = std::current_exception();
        }
        std::lock_guard const guard(mutex);
        isDone = true;
        finished.notify_one();
    });
    std::optional<py::error_already_set> raised;
    double shown = -1;
    bool const asksPython = isMainThread();
    auto const tell = [&](double percent) {
        if (progress && percent > shown) {
            shown = percent;
            progress(percent);
        }
    };
    {
        py::gil_scoped_release unlocked;
        std::unique_lock lock(mutex);
        while (!finished.wait_for(lock, std::chrono::milliseconds(25), [&] { return isDone; })) {
            lock.unlock();
            if (!raised) {
                double const percent = m_algorithm->getProgress();
                py::gil_scoped_acquire const locked;
                try {
                    if (asksPython && PyErr_CheckSignals() != 0)
                        throw py::error_already_set();
                    tell(percent);
                } catch (py::error_already_set& error) {
                    raised.emplace(std::move(error));
                    run.cancel();
                }
            }
            lock.lock();
        }
        lock.unlock();
        worker.join();
    }
    if (raised)
        throw std::move(*raised);
    if (failure)
        std::rethrow_exception(failure);
    if (!run.isCancelled())
        tell(100);
}

void Algorithm::execute(RunOptions const& options, RunningRun& run)
{
    m_algorithm->setAutoCpuDispatch(!options.level);
    if (options.level)
        m_algorithm->setOptimLevel(*options.level);
    if (options.extraMemory)
        m_algorithm->setMaximumExtraMemoryUsage(*options.extraMemory);
    py::object progress;
    if (options.progress)
        progress = pythonSide().asProgress(options.progress);
    for (std::size_t attempt = 0;; ++attempt) {
        try {
            if (progress || onCtrlC() == OnCtrlC::AskPython)
                executePolled(run, options.threads, progress);
            else
                executeHere(run, options.threads);
            return;
        } catch (qel::RuleException const& error) {
            if (attempt > 2 * m_slots.size() || !adaptInterpretation(error))
                throw;
        }
    }
}

py::object Algorithm::run(RunOptions const& options)
{
    if (m_isBusy.exchange(true)) {
        PyErr_SetString(PyExc_RuntimeError,
                        (m_record.name + " is running: take another object for another run").c_str());
        throw py::error_already_set();
    }
    struct Free
    {
        std::atomic<bool>& flag;
        ~Free() { flag = false; }
    };
    {
        // Setting an output is still allowed here.
        m_isBusy = false;
        prepareOutputs(options);
        refuseOverlaps();
        if (!m_record.isProbed) {
            probe();
            prepareOutputs(options);
        }
        connectImages();
        m_isBusy = true;
    }
    Free const free{m_isBusy};
    bool isCancelled = false;
    {
        RunningRun run(*m_algorithm);
        struct Publish
        {
            std::atomic<RunningRun*>& slot;
            ~Publish() { slot = nullptr; }
        } const publish{m_run};
        m_run = &run;
        execute(options, run);
        isCancelled = run.isCancelled();
    }
    if (isCancelled) {
        py::object const error = pythonSide().cancelled(m_record.name);
        PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
        throw py::error_already_set();
    }
    return results();
}

bool Algorithm::cancel()
{
    // Under the interpreter's lock, as the end of a run is: the run cannot vanish meanwhile.
    RunningRun* const run = m_run.load();
    if (!run)
        return false;
    run->cancel();
    return true;
}

py::object Algorithm::resultOf(std::size_t index)
{
    PropertyRecord const& property = m_record.properties[index];
    Slot& slot = m_slots[index];
    if (property.kind->role() == ImageRole::None)
        return property.kind->value(property.of(*m_algorithm), slot.kept);
    if (!slot.image)
        return py::none();
    NumpyImage const& image = *slot.image;
    if (image.isNew() && !image.array())
        return py::none(); // the run left it empty
    if (!image.isNew() && !slot.isWrapped)
        return slot.given;
    if (image.isNew() && !m_anyWrapped) {
        slot.given = image.array();
        return slot.given;
    }
    auto const dimensions = static_cast<int>(image.array().ndim());
    auto const spacing = writeAxes(dimensions, [&](auto axis) { return image.getSpacingOf(axis); });
    auto const origin = writeAxes(dimensions, [&](auto axis) { return image.getOriginOf(axis); });
    auto const unit = toStdString(image.getSpatialUnitName());
    auto const timeUnit = toStdString(image.getTemporalUnitName());
    char const* const interpretation = nameOf(image.getInterpretation());
    if (image.isNew()) {
        slot.given = pythonSide().imageClass(image.array(), spacing, origin, unit, interpretation, timeUnit);
        slot.isWrapped = true;
    } else {
        slot.given.attr("_take")(spacing, origin, unit, interpretation, timeUnit);
    }
    return slot.given;
}

py::object Algorithm::results()
{
    if (m_record.numOfResults == 0)
        return py::none();
    if (m_record.numOfResults == 1)
        return resultOf(m_slots.size() - 1);
    py::tuple all(m_record.numOfResults);
    py::tuple fields(m_record.numOfResults);
    std::size_t count = 0;
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
        if (m_record.properties[i].isOutput) {
            fields[count] = py::str(m_record.properties[i].name);
            all[count++] = resultOf(i);
        }
    }
    if (!m_record.resultType)
        m_record.resultType = pythonSide().makeResultType(m_record.name, fields);
    return m_record.resultType(*all);
}

void raise(qel::Exception const& error)
{
    char const* name = "Exception";
    if (dynamic_cast<qel::RuleException const*>(&error))
        name = "RuleException";
    else if (dynamic_cast<qel::SerializationException const*>(&error))
        name = "SerializationException";
    else if (dynamic_cast<qel::BadIndex const*>(&error))
        name = "BadIndex";
    else if (dynamic_cast<qel::UnexpectedError const*>(&error))
        name = "UnexpectedError";
    else if (dynamic_cast<qel::FileSystemError const*>(&error))
        name = "FileSystemError";
    else if (dynamic_cast<qel::MemoryError const*>(&error))
        name = "MemoryError";
    else if (dynamic_cast<qel::RuntimeError const*>(&error))
        name = "RuntimeError";
    else if (dynamic_cast<qel::InvalidCall const*>(&error))
        name = "InvalidCall";
    else if (dynamic_cast<qel::ProcessingException const*>(&error))
        name = "ProcessingException";
    auto const decoded = [](qel::String const& text) {
        return py::reinterpret_steal<py::object>(
            PyUnicode_DecodeUTF8(text.c_str(), static_cast<py::ssize_t>(text.length()), "replace"));
    };
    py::list levels;
    for (unsigned long i = 0; i < error.getNumOfInfoLevels(); ++i) {
        auto const& level = error.getInfoLevel(i);
        levels.append(py::make_tuple(decoded(level.message), decoded(level.algorithmName)));
    }
    py::object const made = pythonSide().libraryError(name, decoded(error.what()), levels);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(made.ptr())), made.ptr());
}

} // namespace binding
