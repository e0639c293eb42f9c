// Contract of a host's raster-information object as the component gets it: in-process, on Windows through
// COM.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <limits>
#include <stdexcept>
#include <thread>

#include "orvexcommon/HostInterfaces.h"
#include "support/HostObjects.h"

namespace orvex::host {
namespace {

/// Answers what the test wants, by path.
class ScriptedRaster final : public OrvexRasterInformation {
  public:
    explicit ScriptedRaster(const RasterProperties& properties) : properties_(properties) {}

    std::int32_t Describe(const std::wstring& path, RasterProperties& properties,
                          std::wstring& reason) override {
        if (path.starts_with(L"fails")) {
            reason = path.substr(5);
            return kHostFail;
        }
        properties = properties_;
        properties.driver = properties.hasDetails ? path : L"";
        return kHostOk;
    }

  private:
    const RasterProperties& properties_;
};

class RasterInformationTest : public ::testing::Test {
  protected:
    ~RasterInformationTest() override { Withdraw(); }

    void Offer() {
        RegisterHostClass(kRasterInformationClass,
                          [this] { return std::make_unique<ScriptedRaster>(properties_); });
    }
    static void Withdraw() { RegisterHostClass(kRasterInformationClass, nullptr); }
    std::unique_ptr<OrvexRasterInformation> Object() const {
        std::int32_t result = kHostFail;
        auto object = maker_(result);
        EXPECT_EQ(result, kHostOk);
        return object;
    }
    /// The properties as the component gets them.
    RasterProperties Described() const {
        RasterProperties properties;
        std::wstring reason;
        EXPECT_EQ(Object()->Describe(L"GTiff", properties, reason), kHostOk);
        EXPECT_EQ(reason, L"");
        return properties;
    }

    RasterProperties properties_;  ///< of the scripted object; its driver is the path
    const RasterInformationMaker maker_ = MakeHostObjects()->RasterInformation();
};

const std::wstring kOddText = std::wstring(L"a\0b Größe ", 10) + L"\U0001F5FA";
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();

/// Every member has a value of its own, so that no two can be confused.
RasterProperties FullProperties() {
    const RasterBandProperties odd{L"Float32", 17, 256,      kGreatest, L"Undefined", -9999.25, -kInfinity,
                                   1e300,      5,  kOddText, L"m",      0.1,          -273.15};
    return {
        {kGreatest, 1, 0.1, 5e-324, L"US survey foot", std::string("LOCAL_CS[\"\xC3\x9C\xF0\x9F\x97\xBA\"]"),
         32767, 2, 3, 2, 16, 4, std::array<double, 4>{-1.5, -2.5, 1e9, 0.1}},
        true,
        L"GTiff",
        L"GeoTIFF",
        L"DEFLATE",
        L"BAND",
        L"Point",
        L"2021:06:01 12:00:00",
        std::array<double, 6>{1, 2, 3, -4, 5.5, -6},
        7,
        true,
        std::vector<RasterBandProperties>{odd, {}},
        {L"/a/b.ovr", kOddText},
        std::uint64_t{1} << 52,
        {L"first", L"", L"third"}};
}

TEST_F(RasterInformationTest, EveryPropertyArrivesAndWhatIsNotStatedStaysSo) {
    RasterProperties detailed;
    detailed.width = detailed.height = 1;
    RasterProperties bare = detailed;
    detailed.hasDetails = true;
    RasterProperties more = detailed;  // bands than are described
    more.bands = 300;
    std::vector<RasterBandProperties> described(kMostBandsDescribed);
    described.back().description = L"last";
    more.bandDetails = described;
    Offer();
    for (const RasterProperties& properties : {FullProperties(), detailed, bare, more}) {
        properties_ = properties;
        properties_.driver = properties.hasDetails ? L"GTiff" : L"";
        EXPECT_TRUE(Described() == properties_);
    }
}

TEST_F(RasterInformationTest, AFailureGivesItsReasonAndTouchesNoProperty) {
    properties_ = FullProperties();
    Offer();
    const auto object = Object();
    for (const wchar_t* wanted : {L"The file is cut off. \U0001F5FA", L"", L"Another one."}) {
        RasterProperties properties;
        properties.width = 77;
        properties.driver = L"old";
        std::wstring reason;
        EXPECT_EQ(object->Describe(std::wstring(L"fails") + wanted, properties, reason), kHostFail);
        EXPECT_EQ(reason, wanted);
        EXPECT_EQ(properties.width, 77);
        EXPECT_EQ(properties.driver, L"old");
        EXPECT_FALSE(properties.hasDetails);
    }
    RasterProperties properties;
    std::wstring reason;
    EXPECT_EQ(object->Describe(L"path \U0001F5FA", properties, reason), kHostOk);
    EXPECT_EQ(properties.driver, L"path \U0001F5FA");
    EXPECT_EQ(reason, L"") << "not that of the file before";
}

TEST_F(RasterInformationTest, AFactoryThatMakesNoSuchObjectIsAFailure) {
    const HostObjectFactory factories[] = {
        [] { return nullptr; },
        []() -> std::unique_ptr<HostObject> { throw std::runtime_error("no"); },
        [] { return std::make_unique<HostObject>(); },
    };
    for (const HostObjectFactory& factory : factories) {
        RegisterHostClass(kRasterInformationClass, factory);
        std::int32_t result = kHostOk;
        std::thread([&] { EXPECT_EQ(maker_(result), nullptr); }).join();
        EXPECT_EQ(result, kHostFail);
    }
}

TEST_F(RasterInformationTest, WorkersUseItWhileItComesAndGoes) {
    properties_ = FullProperties();
    std::atomic<bool> done = false;
    std::atomic<int> made = 0;
    std::atomic<int> wrong = 0;
    constexpr int kWorkers = 4;
    std::vector<std::thread> workers;
    workers.reserve(kWorkers);
    for (int i = 0; i < kWorkers; ++i) {
        workers.emplace_back([&, name = std::to_wstring(i)] {
            while (!done) {
                std::int32_t result = 1;
                const auto object = maker_(result);
                RasterProperties read;
                std::wstring reason;
                const bool right = object ? object->Describe(name, read, reason) == kHostOk &&
                                                read.driver == name && read.extent == properties_.extent
                                          : result == kHostClassNotRegistered;
                made += object ? 1 : 0;
                wrong += right ? 0 : 1;
            }
        });
    }
    const auto waitForObjects = [&made](int count) {
        for (const int before = made; made < before + count;) {
            std::this_thread::yield();
        }
    };
    Offer();
    Offer();  // replaces the first
    waitForObjects(80);
    for (int round = 0; round < 50; ++round) {
        Withdraw();
        Offer();
    }
    waitForObjects(10);
    done = true;
    for (std::thread& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace orvex::host
