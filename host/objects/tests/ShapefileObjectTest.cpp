// Contract of a host's shapefile object as the component gets it: in-process, on Windows through COM.
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <thread>

#include "feature/testing/TestShapefile.h"
#include "host/objects/HostClasses.h"
#include "orvexcommon/HostInterfaces.h"
#include "support/HostObjects.h"
#include "support/Text.h"

namespace orvex::host {
namespace {

using testing::TemporaryFolder;
using testing::TestShapefile;
using Extent = std::array<double, 4>;

constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();
const std::wstring kOddText = std::wstring(L"a\0b Größe ", 10) + L"\U0001F5FA";

/// Opens every file but those called "fails" and a reason; field 7 has an odd name, others fail.
class ScriptedShapefile final : public OrvexShapefile {
  public:
    std::int32_t Open(const std::wstring& path, std::wstring& reason) override {
        isOpen_ = !path.starts_with(L"fails");
        reason = isOpen_ ? L"" : path.substr(5);
        return State();
    }
    std::int32_t GetShapeCount(std::int32_t& count) override { return count = kGreatest, State(); }
    std::int32_t GetShapeType(std::int32_t& type) override { return type = 31, State(); }
    std::int32_t GetExtent(Extent& extent) override { return extent = {-1.5, 0.1, 1e300, -2}, State(); }
    std::int32_t GetFieldCount(std::int32_t& count) override { return count = 8, State(); }
    std::int32_t GetFieldInfo(std::int32_t index, std::wstring& name, std::int32_t& type) override {
        if (index != 7) {
            return kHostFail;
        }
        name = kOddText;
        type = 4;
        return State();
    }

  private:
    std::int32_t State() const { return isOpen_ ? kHostOk : kHostFail; }

    bool isOpen_ = false;
};

/// What an object says.
struct Answers {
    std::int32_t count = 11;
    std::int32_t type = 12;
    Extent extent{1, 2, 3, 4};
    std::int32_t fields = 13;
    std::wstring name = L"old";
    std::int32_t fieldType = 14;

    /// The result codes are all `expected`.
    static Answers Of(OrvexShapefile& shapefile, std::int32_t field, std::int32_t expected) {
        Answers answers;
        EXPECT_EQ(shapefile.GetShapeCount(answers.count), expected);
        EXPECT_EQ(shapefile.GetShapeType(answers.type), expected);
        EXPECT_EQ(shapefile.GetExtent(answers.extent), expected);
        EXPECT_EQ(shapefile.GetFieldCount(answers.fields), expected);
        EXPECT_EQ(shapefile.GetFieldInfo(field, answers.name, answers.fieldType), expected);
        return answers;
    }
    friend bool operator==(const Answers&, const Answers&) = default;
};

class ShapefileObjectTest : public ::testing::Test {
  protected:
    ~ShapefileObjectTest() override { RegisterHostClass(kShapefileClass, nullptr); }

    static void Offer(HostObjectFactory factory) { RegisterHostClass(kShapefileClass, std::move(factory)); }
    /// Calls `use` with an object on a worker thread, as the component does.
    template <typename Use>
    void WithObject(Use use) const {
        std::thread([&] {
            std::int32_t result = kHostFail;
            const auto object = maker_(result);
            EXPECT_EQ(result, kHostOk);
            ASSERT_NE(object, nullptr);
            use(*object);
        }).join();
    }

    const ShapefileMaker maker_ = MakeHostObjects()->Shapefiles();
};

TEST_F(ShapefileObjectTest, EveryAnswerArrives) {
    Offer([] { return std::make_unique<ScriptedShapefile>(); });
    WithObject([](OrvexShapefile& shapefile) {
        std::wstring reason;
        ASSERT_EQ(shapefile.Open(L"a \U0001F5FA.shp", reason), kHostOk);
        EXPECT_EQ(reason, L"");
        const Answers expected{kGreatest, 31, {-1.5, 0.1, 1e300, -2}, 8, kOddText, 4};
        EXPECT_TRUE(Answers::Of(shapefile, 7, kHostOk) == expected);
        Answers answers;
        EXPECT_EQ(shapefile.GetFieldInfo(6, answers.name, answers.fieldType), kHostFail);
        EXPECT_TRUE(answers == Answers()) << "a failure changes nothing";
    });
}

TEST_F(ShapefileObjectTest, AFailureGivesItsReasonAndTheRestFailsThen) {
    Offer([] { return std::make_unique<ScriptedShapefile>(); });
    WithObject([](OrvexShapefile& shapefile) {
        for (const wchar_t* wanted : {L"The file is cut off. \U0001F5FA", L"", L"Another one."}) {
            std::wstring reason;
            EXPECT_EQ(shapefile.Open(std::wstring(L"fails") + wanted, reason), kHostFail);
            EXPECT_EQ(reason, wanted);
        }
        std::int32_t count = 5;
        EXPECT_EQ(shapefile.GetShapeCount(count), kHostFail);
    });
}

TEST_F(ShapefileObjectTest, AClassThatIsMissingIsToldFromOneThatFails) {
    const struct {
        HostObjectFactory factory;
        std::int32_t result;
    } cases[] = {
        {nullptr, kHostClassNotRegistered},
        {[] { return nullptr; }, kHostFail},
        {[]() -> std::unique_ptr<HostObject> { throw std::runtime_error("no"); }, kHostFail},
        {[] { return std::make_unique<HostObject>(); }, kHostFail},
    };
    for (const auto& c : cases) {
        Offer(c.factory);
        std::int32_t result = kHostOk;
        std::thread([&] { EXPECT_EQ(maker_(result), nullptr); }).join();
        EXPECT_EQ(result, c.result);
    }
}

TEST_F(ShapefileObjectTest, TheReferenceHostReadsShapefiles) {
    const TemporaryFolder folder;
    const std::wstring path = TestShapefile().Write(folder, L"a");
    const HostClasses classes({.settingsFile = folder.Path() / "host.sqlite", .projectFolder = nullptr});
    WithObject([&](OrvexShapefile& shapefile) {
        EXPECT_TRUE(Answers::Of(shapefile, 1, kHostFail) == Answers()) << "not open yet";
        std::wstring reason;
        ASSERT_EQ(shapefile.Open(path, reason), kHostOk);
        EXPECT_TRUE(Answers::Of(shapefile, 1, kHostOk) == (Answers{3, 1, {7, 50, 9, 52}, 3, L"HEIGHT", 0}));
        Answers answers;
        for (const std::int32_t index : {-1, 3, kGreatest}) {
            EXPECT_EQ(shapefile.GetFieldInfo(index, answers.name, answers.fieldType), kHostFail);
        }
        EXPECT_EQ(shapefile.Open(folder.Name(L"none.shp"), reason), kHostFail);
        EXPECT_EQ(reason, Text(text::kFileMissing));
        EXPECT_TRUE(Answers::Of(shapefile, 1, kHostFail) == Answers()) << "not those of the file before";
    });
}

}  // namespace
}  // namespace orvex::host
