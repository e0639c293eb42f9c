// The component's way to a host's raster-information object: the same suite on the fake and on the platform's
// own way, which is COM on Windows.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <thread>

#include "orvexcommon/HostInterfaces.h"
#include "settings/testing/FakeHostObjects.h"

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
        properties.driver = path;
        return kHostOk;
    }

  private:
    const RasterProperties& properties_;
};

enum class Way { Fake, Registered };

class RasterInformationTest : public ::testing::TestWithParam<Way> {
  protected:
    ~RasterInformationTest() override { Offer(nullptr); }

    void Offer(HostObjectFactory factory) {
        if (GetParam() == Way::Registered) {
            RegisterHostClass(kRasterInformationClass, std::move(factory));
        } else if (factory) {
            fake_.rasterInformation = [factory](std::int32_t& result) {
                std::unique_ptr<HostObject> object = factory();
                result = object ? kHostOk : kHostFail;
                auto* raster = dynamic_cast<OrvexRasterInformation*>(object.release());
                return std::unique_ptr<OrvexRasterInformation>(raster);
            };
        } else {
            fake_.rasterInformation = nullptr;
        }
    }
    void OfferScripted() {
        Offer([this] { return std::make_unique<ScriptedRaster>(properties_); });
    }
    RasterInformationMaker Maker() {
        return GetParam() == Way::Fake ? fake_.RasterInformation() : host_->RasterInformation();
    }
    std::unique_ptr<OrvexRasterInformation> Object() {
        std::int32_t result = kHostFail;
        auto object = Maker()(result);
        EXPECT_EQ(result, kHostOk);
        return object;
    }
    /// The properties as the component gets them.
    RasterProperties Described() {
        RasterProperties properties;
        std::wstring reason;
        EXPECT_EQ(Object()->Describe(L"GTiff", properties, reason), kHostOk);
        EXPECT_EQ(reason, L"");
        return properties;
    }

    testing::FakeHostObjects fake_;
    std::unique_ptr<HostObjects> host_ = MakeHostObjects();
    RasterProperties properties_;  ///< what the scripted object says; its driver is the path
};

const std::wstring kOddText = std::wstring(L"a\0b Größe ", 10) + L"\U0001F5FA";

RasterBandProperties OddBand() {
    RasterBandProperties band;
    band.dataType = L"Float32";
    band.bits = 17;
    band.blockWidth = 256;
    band.blockHeight = std::numeric_limits<std::int32_t>::max();
    band.colorInterpretation = L"Undefined";
    band.nodata = -9999.25;
    band.minimum = -std::numeric_limits<double>::infinity();
    band.maximum = 1e300;
    band.overviews = 5;
    band.description = kOddText;
    band.unit = L"m";
    band.scale = 0.1;
    band.offset = -273.15;
    return band;
}

RasterProperties FullProperties() {
    RasterProperties properties;
    properties.width = std::numeric_limits<std::int32_t>::max();
    properties.height = 1;
    properties.pixelWidth = 0.1;
    properties.pixelHeight = 5e-324;
    properties.linearUnit = L"US survey foot";
    properties.wkt = "LOCAL_CS[\"\xC3\x9C\xF0\x9F\x97\xBA\"]";
    properties.projectionCode = 32767;
    properties.colorModel = 2;
    properties.rasterKind = 3;
    properties.bands = 2;
    properties.bitsPerBand = 16;
    properties.overviews = 4;
    properties.extent = {{-1.5, -2.5, 1e9, 0.1}};
    properties.hasDetails = true;
    properties.driver = L"GTiff";
    properties.format = L"GeoTIFF";
    properties.compression = L"DEFLATE";
    properties.interleave = L"BAND";
    properties.pixelIs = L"Point";
    properties.acquired = L"2021:06:01 12:00:00";
    properties.transform = {{1, 2, 3, -4, 5.5, -6}};
    properties.controlPoints = 7;
    properties.hasRpc = true;
    properties.bandDetails = {OddBand(), RasterBandProperties()};
    properties.sidecars = {L"/a/b.ovr", kOddText};
    properties.totalBytes = std::uint64_t{1} << 52;
    properties.warnings = {L"first", L"", L"third"};
    return properties;
}

// By way of tuples, which tell members apart that come in the same order in both.
auto Common(const RasterProperties& p) {
    return std::tie(p.width, p.height, p.pixelWidth, p.pixelHeight, p.linearUnit, p.wkt, p.projectionCode,
                    p.colorModel, p.rasterKind, p.bands, p.bitsPerBand, p.overviews, p.extent);
}
auto FileDetails(const RasterProperties& p) {
    return std::tie(p.hasDetails, p.driver, p.format, p.compression, p.interleave, p.pixelIs, p.acquired,
                    p.transform, p.controlPoints, p.hasRpc, p.sidecars, p.totalBytes, p.warnings);
}
auto BandDetails(const RasterBandProperties& b) {
    return std::tie(b.dataType, b.bits, b.blockWidth, b.blockHeight, b.colorInterpretation, b.nodata,
                    b.minimum, b.maximum, b.overviews, b.description, b.unit, b.scale, b.offset);
}

TEST_P(RasterInformationTest, EveryPropertyArrives) {
    properties_ = FullProperties();
    OfferScripted();
    const RasterProperties described = Described();
    EXPECT_TRUE(Common(described) == Common(properties_));
    EXPECT_TRUE(FileDetails(described) == FileDetails(properties_));
    ASSERT_EQ(described.bandDetails.size(), 2U);
    EXPECT_TRUE(BandDetails(described.bandDetails[0]) == BandDetails(properties_.bandDetails[0]));
    EXPECT_TRUE(BandDetails(described.bandDetails[1]) == BandDetails(properties_.bandDetails[1]));
}

TEST_P(RasterInformationTest, WhatIsNotStatedStaysSo) {
    properties_.width = properties_.height = 1;
    OfferScripted();
    const RasterProperties described = Described();
    EXPECT_TRUE(Common(described) == Common(properties_));
    EXPECT_FALSE(described.hasDetails);

    properties_.hasDetails = true;
    properties_.driver = L"GTiff";
    EXPECT_TRUE(FileDetails(Described()) == FileDetails(properties_));
}

TEST_P(RasterInformationTest, NodataThatIsNoNumberArrives) {
    properties_.width = properties_.height = properties_.bands = 1;
    properties_.hasDetails = true;
    properties_.bandDetails.resize(1);
    properties_.bandDetails[0].nodata = std::numeric_limits<double>::quiet_NaN();
    OfferScripted();
    const std::optional<double> nodata = Described().bandDetails.at(0).nodata;
    ASSERT_TRUE(nodata.has_value());
    EXPECT_TRUE(std::isnan(*nodata));
}

TEST_P(RasterInformationTest, OfManyBandsTheFirstAreDescribed) {
    properties_.width = properties_.height = 1;
    properties_.bands = 300;
    properties_.hasDetails = true;
    properties_.bandDetails.resize(kMostBandsDescribed);
    properties_.bandDetails.back().description = L"last";
    OfferScripted();
    const RasterProperties described = Described();
    EXPECT_EQ(described.bands, 300);
    ASSERT_EQ(described.bandDetails.size(), kMostBandsDescribed);
    EXPECT_EQ(described.bandDetails.back().description, L"last");
    EXPECT_EQ(described.bandDetails.front().description, L"");
}

TEST_P(RasterInformationTest, AFailureGivesItsReasonAndTouchesNoProperty) {
    properties_ = FullProperties();
    OfferScripted();
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

TEST_P(RasterInformationTest, WorksOnThreadsOfTheirOwnAllAtOnce) {
    properties_ = FullProperties();
    OfferScripted();
    const RasterInformationMaker maker = Maker();
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this, maker, &right, name = std::to_wstring(i)] {
            for (int round = 0; round < 20; ++round) {
                std::int32_t result = kHostFail;
                const auto object = maker(result);
                RasterProperties properties;
                std::wstring reason;
                const bool same = object && object->Describe(name, properties, reason) == kHostOk &&
                                  properties.driver == name && Common(properties) == Common(properties_);
                right += same ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, 4 * 20);
}

INSTANTIATE_TEST_SUITE_P(Ways, RasterInformationTest, ::testing::Values(Way::Fake, Way::Registered),
                         [](const auto& way) { return way.param == Way::Fake ? "Fake" : "Registered"; });

class RasterClassTest : public ::testing::Test {
  protected:
    ~RasterClassTest() override { RegisterHostClass(kRasterInformationClass, nullptr); }

    static void Offer() {
        RegisterHostClass(kRasterInformationClass, [] {
            static const RasterProperties properties = FullProperties();
            return std::make_unique<ScriptedRaster>(properties);
        });
    }
    static void Withdraw() { RegisterHostClass(kRasterInformationClass, nullptr); }
    static void ExpectMade(const RasterInformationMaker& maker, std::int32_t wanted) {
        std::int32_t result = 1;
        EXPECT_EQ(maker(result) != nullptr, wanted == kHostOk);
        EXPECT_EQ(result, wanted);
    }

    RasterInformationMaker maker_ = MakeHostObjects()->RasterInformation();
};

TEST_F(RasterClassTest, TheMakerOutlivesWhatMadeItAndSeesTheClassComeAndGo) {
    const auto everywhere = [this](std::int32_t wanted) {
        ExpectMade(maker_, wanted);
        std::thread([&] { ExpectMade(maker_, wanted); }).join();
    };
    everywhere(kHostClassNotRegistered);
    for (int round = 0; round < 3; ++round) {
        Offer();
        everywhere(kHostOk);
        Offer();  // another takes its place
        everywhere(kHostOk);
        Withdraw();
        everywhere(kHostClassNotRegistered);
    }
}

TEST_F(RasterClassTest, AFactoryThatMakesNoSuchObjectIsAFailure) {
    const HostObjectFactory factories[] = {
        [] { return nullptr; },
        []() -> std::unique_ptr<HostObject> { throw std::runtime_error("no"); },
        [] { return std::make_unique<HostObject>(); },
    };
    for (const HostObjectFactory& factory : factories) {
        RegisterHostClass(kRasterInformationClass, factory);
        std::thread([this] { ExpectMade(maker_, kHostFail); }).join();
    }
}

TEST_F(RasterClassTest, ComesAndGoesWhileWorkersAskForIt) {
    std::atomic<bool> done = false;
    std::atomic<int> made = 0;
    std::atomic<int> odd = 0;
    std::vector<std::thread> workers;
    workers.reserve(3);
    for (int i = 0; i < 3; ++i) {
        workers.emplace_back([&] {
            while (!done) {
                std::int32_t result = 1;
                const auto object = maker_(result);
                RasterProperties properties;
                std::wstring reason;
                const bool fine =
                    object ? result == kHostOk && object->Describe(L"x", properties, reason) == kHostOk
                           : result == kHostClassNotRegistered;
                made += object ? 1 : 0;
                odd += fine ? 0 : 1;
            }
        });
    }
    Offer();
    while (made < 10) {
        std::this_thread::yield();
    }
    for (int round = 0; round < 50; ++round) {
        Withdraw();
        Offer();
    }
    const int before = made;
    while (made < before + 10) {
        std::this_thread::yield();
    }
    done = true;
    for (std::thread& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(odd, 0);
}

}  // namespace
}  // namespace orvex::host
