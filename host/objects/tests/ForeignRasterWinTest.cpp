// Another host's raster-information class, as the component calls it from its workers.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <thread>

#include "host/objects/tests/ForeignObject.h"
#include "support/HostObjects.h"
#include "support/com/ComApartment_win.h"

namespace orvex::host {
namespace {

/// Has the essentials only: no details, no failure reasons. The path chooses its answers: "plain", "odd",
/// "bare" (a size and nothing else), "no size", "fails". The projection code is the id of the calling thread.
class ForeignRaster final : public ForeignObject<IOrvexRasterInformation> {
  public:
    STDMETHODIMP Open(BSTR path) override {
        path_ = path;
        return path_ == L"fails" ? E_ACCESSDENIED : S_OK;
    }
    STDMETHODIMP get_Width(long* pixels) override { return *pixels = path_ == L"no size" ? 0 : 300, S_OK; }
    STDMETHODIMP get_Height(long* pixels) override { return *pixels = 200, S_OK; }
    STDMETHODIMP get_PixelWidth(double* units) override { return Answer(units, 0.25, -0.25); }
    STDMETHODIMP get_PixelHeight(double* units) override { return Answer(units, 0.5, kNaN); }
    STDMETHODIMP get_LinearUnit(BSTR* name) override { return AnswerText(name, L"metre"); }
    STDMETHODIMP get_Wkt(BSTR* text) override { return AnswerText(text, L"LOCAL_CS[\"\u00dc\"]"); }
    STDMETHODIMP get_ProjectionCode(long* code) override {
        const auto thread = static_cast<long>(GetCurrentThreadId());
        return Answer(code, thread, thread);
    }
    STDMETHODIMP get_ColorModel(long* model) override { return Answer(model, 1L, 99L); }
    STDMETHODIMP get_RasterKind(long* kind) override { return Answer(kind, 1L, -7L); }
    STDMETHODIMP get_BandCount(long* count) override { return Answer(count, 3L, -1L); }
    STDMETHODIMP get_BitsPerBand(long* bits) override { return Answer(bits, 8L, 8L); }
    STDMETHODIMP get_OverviewCount(long* count) override { return Answer(count, 2L, 2L); }
    STDMETHODIMP GetExtent(double* minX, double* minY, double* maxX, double* maxY) override {
        Answer(minX, 1.0, 1.0);
        Answer(minY, 2.0, kNaN);
        Answer(maxX, 3.0, 3.0);
        return Answer(maxY, 4.0, 4.0);
    }

  private:
    static constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

    template <typename Value>
    HRESULT Answer(Value* target, Value plain, Value odd) const {
        if (path_ == L"bare") {
            return E_NOTIMPL;
        }
        *target = path_ == L"odd" ? odd : plain;
        return S_OK;
    }
    HRESULT AnswerText(BSTR* target, const wchar_t* plain) const {
        *target = path_ == L"plain" ? SysAllocString(plain) : nullptr;
        return path_ == L"bare" ? E_NOTIMPL : S_OK;
    }

    std::wstring path_;
};

class ForeignRasterTest : public ::testing::Test {
  protected:
    struct Answer {
        std::int32_t result = kHostOk;
        RasterProperties properties;
        std::wstring reason;
        DWORD thread = 0;  ///< the worker's
    };

    /// Asks an object on a worker thread, as the component does.
    Answer Describe(const std::wstring& path) const {
        Answer answer;
        std::thread([&] {
            answer.thread = GetCurrentThreadId();
            if (const auto object = maker_(answer.result)) {
                answer.result = object->Describe(path, answer.properties, answer.reason);
            }
        }).join();
        return answer;
    }

  private:
    const ComApartment apartment_{COINIT_MULTITHREADED};
    const RasterInformationMaker maker_ = MakeHostObjects()->RasterInformation();
    const ForeignClass<ForeignRaster> class_{kRasterInformationClass};
};

TEST_F(ForeignRasterTest, OddAnswersAreUnderstoodAndNoObjectIsLeft) {
    const std::array<double, 4> extent{1, 2, 3, 4};
    const struct {
        const wchar_t* path;
        std::int32_t result;
        bool isThreadGiven;
        RasterEssentials read;
    } cases[] = {
        {L"plain",
         kHostOk,
         true,
         {300, 200, 0.25, 0.5, L"metre", std::string("LOCAL_CS[\"\xC3\x9C\"]"), 0, 1, 1, 3, 8, 2, extent}},
        {L"odd", kHostOk, true, {300, 200, 0.25, 0, L"", std::string(), 0, 99, -7, 0, 8, 2, {}}},
        {L"bare", kHostOk, false, {300, 200, 0, 0, L"", std::string(), 0, -1, -1, 0, 0, 0, {}}},
        {L"no size", kHostFail, false, {}},
        {L"fails", static_cast<std::int32_t>(E_ACCESSDENIED), false, {}},
    };
    for (const auto& c : cases) {
        const Answer answer = Describe(c.path);
        EXPECT_EQ(answer.result, c.result) << c.path;
        EXPECT_EQ(answer.reason, L"") << c.path;
        EXPECT_FALSE(answer.properties.hasDetails) << c.path;
        RasterEssentials expected = c.read;
        expected.projectionCode = c.isThreadGiven ? static_cast<std::int32_t>(answer.thread) : 0;
        EXPECT_TRUE(static_cast<const RasterEssentials&>(answer.properties) == expected) << c.path;
    }
    EXPECT_EQ(ForeignRaster::Live(), 0);
}

}  // namespace
}  // namespace orvex::host
