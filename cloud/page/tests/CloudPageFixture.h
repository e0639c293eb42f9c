#pragma once
// The cloud page with scripted dialogs, a scripted network and a scripted clock.
#include <gmock/gmock.h>

#include <QAction>
#include <QMenu>
#include <QTextEdit>
#include <atomic>
#include <deque>
#include <map>
#include <optional>

#include "cloud/page/AddCloudLASFilesPP.h"
#include "dialog/testing/PageFixture.h"
#include "las/testing/LasFiles.h"

namespace orvex {

using Map = std::map<std::wstring, std::wstring>;

inline constexpr std::int64_t kNoon = 1'790'251'200'000;  // 2026-09-24 12:00 UTC
inline constexpr std::int64_t kHourMs = 3'600'000;
inline constexpr const wchar_t* kSigned =
    L"https://store.example/lidar/tile.laz?X-Amz-Date=20260924T110000Z&X-Amz-Expires=7200"
    L"&X-Amz-Credential=KEYID&X-Amz-Signature=c0ffee";

/// Answers of the dialogs and of the network.
struct Script {
    std::deque<std::vector<CloudLayer>> picked;
    std::deque<std::optional<std::wstring>> urls;
    std::vector<std::wstring> typed;  ///< in the field before
    std::deque<std::optional<std::wstring>> names;
    std::wstring failure;  ///< thrown by all of these unless empty
    std::int64_t now = kNoon;
    std::function<RemoteLas(const std::wstring& url, const CloudCall& call)> inspect;

    void Throw() const {
        if (!failure.empty()) {
            throw LDataError(failure);
        }
    }
    CloudSources Sources() {
        CloudSources sources;
        sources.browse = [this] {
            Throw();
            return testing::Next(picked, {});
        };
        sources.askUrl = [this](const std::wstring& before) {
            Throw();
            typed.push_back(before);
            return testing::Next(urls, {});
        };
        sources.askName = [this](const std::wstring&) {
            Throw();
            return testing::Next(names, {});
        };
        sources.inspect = [this](const std::wstring& url, const CloudCall& call) {
            return inspect(url, call);
        };
        sources.now = [this] { return now; };
        return sources;
    }
};

/// Made before the page, whose maker is a plain function.
struct ScriptOfPage {
    ScriptOfPage() { current = &script; }

    static std::unique_ptr<AddFilesPage> Make(const PageContext& context) {
        return std::make_unique<AddCloudLASFilesPP>(context, current->Sources());
    }

    Script script;
    static inline Script* current = nullptr;
};

inline CloudLayer Layer(const std::wstring& name, const std::wstring& url) {
    CloudLayer layer;
    layer.name = name;
    layer.url = url;
    layer.bytes = 1'610'612'736;
    layer.size = L"1.500";
    layer.points = L"1000";
    layer.crs = L"EPSG:25832";
    layer.modified = L"2026-01-02";
    layer.id = L"id of " + name;
    layer.project = L"p1";
    return layer;
}

class CloudPage : protected ScriptOfPage, public testing::PageFixture {
  protected:
    CloudPage() : PageFixture(ScriptOfPage::Make) {}

    void Choose(const char* command) const {
        page->findChild<QMenu*>("addMenu")->findChild<QAction*>(QLatin1String(command))->trigger();
    }
    void Browse(std::vector<CloudLayer> layers) {
        script.picked = {std::move(layers)};
        Choose("32773");
    }
    void Enter(const std::wstring& url) {
        script.urls = {url};
        Choose("32771");
    }
    void Trigger(const char* action) const { page->findChild<QAction*>(QLatin1String(action))->trigger(); }
    std::wstring Overview() const { return ToWide(Find<QTextEdit>("cloudOverview")->toPlainText()); }
    AddFilesParams Stored() {
        params.presignedUrlLayers.clear();
        params.cloudLasLayers.clear();
        params.cloudLasLayerValues2.clear();
        params.cloudLasLayerValues3.clear();
        EXPECT_TRUE(page->ValidateAndStore());
        return params;
    }
    /// A file that the network has.
    RemoteLas Remote(const std::wstring& url) const {
        RemoteLas remote;
        const testing::LasBuilder file =
            testing::LasBuilder().ProjectedEpsg(25832).AddPoints(5, 500000, 5500000);
        // Several threads ask at a time.
        remote.row = InspectLasFile(las_.Write(file, std::to_wstring(++asked_) + L".las"));
        remote.row.path = url;
        remote.transferred = 65'400;
        remote.status = CloudStatus::Ok;
        return remote;
    }

  private:
    testing::LasFolder las_;
    mutable std::atomic<int> asked_ = 0;
};

}  // namespace orvex
