// Another host's shapefile class, as the component calls it from its workers.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "host/objects/tests/ForeignObject.h"
#include "support/HostObjects.h"
#include "support/com/ComApartment_win.h"

namespace orvex::host {
namespace {

/// The path chooses its answers: "plain", "bare" (opens, and nothing else), "fails". The shape type is the id
/// of the calling thread; field 1 has no name.
class ForeignShapefile final : public ForeignObject<IOrvexShapefile> {
  public:
    STDMETHODIMP Open(BSTR path) override {
        path_ = path;
        return path_ == L"fails" ? E_ACCESSDENIED : S_OK;
    }
    STDMETHODIMP get_ShapeCount(long* count) override { return *count = 33, State(); }
    STDMETHODIMP get_ShapeType(long* type) override {
        return *type = static_cast<long>(GetCurrentThreadId()), State();
    }
    STDMETHODIMP GetExtent(double* minX, double* minY, double* maxX, double* maxY) override {
        *minX = 1;
        *minY = 2;
        *maxX = 3;
        *maxY = 4;
        return State();
    }
    STDMETHODIMP get_FieldCount(long* count) override { return *count = 2, State(); }
    STDMETHODIMP GetFieldInfo(long index, BSTR* name, long* type) override {
        *name = index == 0 ? SysAllocString(L"H\u00F6he") : nullptr;
        *type = 5;
        return State();
    }

  private:
    HRESULT State() const { return path_ == L"plain" ? S_OK : E_NOTIMPL; }

    std::wstring path_;
};

/// What an object says when it is asked for everything, and how often it fails.
struct Answers {
    std::int32_t opened = kHostOk;
    std::wstring reason;
    int failures = 0;
    std::int32_t count = -1;
    std::int32_t type = -1;
    std::array<double, 4> extent{};
    std::int32_t fieldCount = -1;
    std::wstring names;
    DWORD thread = 0;
};

/// Asks an object on a worker thread, as the component does.
Answers Ask(const ShapefileMaker& maker, const std::wstring& path) {
    Answers answers;
    std::thread([&] {
        answers.thread = GetCurrentThreadId();
        const auto object = maker(answers.opened);
        ASSERT_NE(object, nullptr);
        answers.opened = object->Open(path, answers.reason);
        const auto count = [&](std::int32_t result) { answers.failures += result < kHostOk ? 1 : 0; };
        count(object->GetShapeCount(answers.count));
        count(object->GetShapeType(answers.type));
        count(object->GetExtent(answers.extent));
        count(object->GetFieldCount(answers.fieldCount));
        for (const std::int32_t index : {0, 1}) {
            std::wstring name = L"old";
            std::int32_t type = 0;
            count(object->GetFieldInfo(index, name, type));
            answers.names += name + L"," + std::to_wstring(type) + L" ";
        }
    }).join();
    return answers;
}

TEST(ForeignShapefile, AnswersAndFailuresArriveAndNoObjectIsLeft) {
    const ComApartment apartment(COINIT_MULTITHREADED);
    const ShapefileMaker maker = MakeHostObjects()->Shapefiles();
    const ForeignClass<ForeignShapefile> registered(kShapefileClass);
    const Answers plain = Ask(maker, L"plain");
    EXPECT_EQ(plain.opened, kHostOk);
    EXPECT_EQ(plain.failures, 0);
    EXPECT_EQ(plain.count, 33);
    EXPECT_EQ(plain.type, static_cast<std::int32_t>(plain.thread)) << "called directly";
    EXPECT_EQ(plain.extent, (std::array<double, 4>{1, 2, 3, 4}));
    EXPECT_EQ(plain.fieldCount, 2);
    EXPECT_EQ(plain.names, L"H\u00F6he,5 ,5 ");

    for (const wchar_t* path : {L"bare", L"fails"}) {
        const Answers failed = Ask(maker, path);
        EXPECT_EQ(failed.opened, std::wstring(path) == L"fails" ? E_ACCESSDENIED : kHostOk);
        EXPECT_EQ(failed.reason, L"");
        EXPECT_EQ(failed.failures, 6);
        EXPECT_EQ(failed.count, -1) << "a failure changes nothing";
        EXPECT_EQ(failed.names, L"old,0 old,0 ");
    }
    EXPECT_EQ(ForeignShapefile::Live(), 0);
}

}  // namespace
}  // namespace orvex::host
