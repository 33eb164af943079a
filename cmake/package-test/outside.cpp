// What an outside host relies on: headers as C++17, symbols, type information and exceptions across the library's
// border.
#include <qel/quelide.h>

#include <cstring>
#include <iostream>

namespace {

int failures = 0;

void expect(bool condition, char const* what)
{
    if (!condition) {
        std::cerr << "failed: " << what << '\n';
        ++failures;
    }
}

bool startsWith(qel::String const& text, char const* start)
{
    return std::strncmp(text.c_str(), start, std::strlen(start)) == 0;
}

/// Whether `call` throws an exception that is caught by its own type.
template <class Error, class Call> void expectCaught(Call call, char const* title)
{
    try {
        call();
        expect(false, title);
    } catch (Error const& error) {
        expect(startsWith(error.what(), title), title);
    } catch (...) {
        std::cerr << "caught by another type: ";
        expect(false, title);
    }
}

template <class Error, class Base> void expectThrown(char const* title)
{
    auto const raise = [] {
        qel::Exception::exceptionInfo info;
        info.message = "from outside";
        throw Error(info);
    };
    expectCaught<Error>(raise, title);
    expectCaught<Base>(raise, title);
    expectCaught<qel::Exception>(raise, title);
}

void runsByClass()
{
    qel::memory::InMemoryImage input;
    qel::memory::InMemoryImage output;
    expect(input.reserve(qel::QEL_UINT8, 4, 1, 1, 1, 1), "reserve");
    expect(output.reserve(qel::QEL_UINT8, 0, 0, 0, 0, 0), "reserve empty");
    unsigned char const voxels[4] = {9, 10, 20, 21};
    expect(input.writeRowAt(4, voxels, 0, 0, 0, 0, 0), "writeRowAt");

    qel::Ref<qel::segmentation::Threshold> threshold = qel::segmentation::Threshold::New();
    threshold->input = &input;
    threshold->lowLevel = 10.0;
    threshold->highLevel = 20.0;
    threshold->output = &output;
    threshold->run();

    unsigned char result[4] = {7, 7, 7, 7};
    expect(output.readRowAt(4, result, 0, 0, 0, 0, 0), "readRowAt");
    expect(result[0] == 0 && result[1] == 1 && result[2] == 1 && result[3] == 0, "voxels of Threshold");
    expect(output.getInterpretation() == qel::QEL_BINARY, "interpretation of Threshold");
}

void runsByName()
{
    qel::Ref<qel::BaseAlgorithm> algorithm = qel::AlgoInfo::fromName("Threshold")->createInstance();
    expect(dynamic_cast<qel::segmentation::Threshold*>(algorithm.get()) != nullptr, "dynamic_cast to Threshold");
    qel::BaseProperty* property = algorithm->getPropertyfromName("lowLevel");
    expect(dynamic_cast<qel::Property<double>*>(property) != nullptr, "dynamic_cast to Property<double>");
    expect(algorithm->getPropertyfromName("nothing") == nullptr, "unknown property");
}

} // namespace

int main()
{
    try {
        expect(QuelideLoadLibrary(nullptr), "QuelideLoadLibrary");
        runsByClass();
        runsByName();
        expectCaught<qel::BadIndex>(
            [] { qel::AlgoBorderInfluence(1, 1, 1, 1, 1).setNumOfVoxels(qel::DirectionTypes(11), 1); }, "Bad index :");
        expectCaught<qel::InvalidCall>([] { qel::AlgoInfo::fromName("nothing"); }, "Invalid call :");
        expectCaught<qel::RuntimeError>([] { qel::Ref<qel::Object>()->destroy(); }, "Runtime error :");
        expectCaught<qel::RuleException>([] { qel::Ref(qel::segmentation::Threshold::New())->run(); },
                                         "Rule exception :");
        expectThrown<qel::BadIndex, qel::ProcessingException>("Bad index :");
        expectThrown<qel::UnexpectedError, qel::ProcessingException>("Unexpected error :");
        expectThrown<qel::FileSystemError, qel::ProcessingException>("File system error :");
        expectThrown<qel::MemoryError, qel::ProcessingException>("Memory error :");
        expectThrown<qel::RuntimeError, qel::ProcessingException>("Runtime error :");
        expectThrown<qel::InvalidCall, qel::ProcessingException>("Invalid call :");
        expectThrown<qel::RuleException, qel::Exception>("Rule exception :");
        expectThrown<qel::SerializationException, qel::Exception>("Serialization exception :");
        QuelideUnloadLibrary();
    } catch (qel::Exception const& error) {
        std::cerr << error.what().c_str() << '\n';
        return 1;
    }
    std::cout << (failures ? "the outside host failed" : "the outside host ran") << '\n';
    return failures ? 1 : 0;
}
