#pragma once
// A cloud account in memory, whose answers a test can hold back.
#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "cloud/page/tests/BrowserFixture.h"

namespace orvex::testing {

/// Pages are called "projects", "projects@PAGE", "ID" and "ID@PAGE" (of the project ID).
class FakeCloud {
  public:
    struct Reply {
        std::vector<ArchivingProject> projects = {};
        std::string next = {};
        std::string json = {};
        CloudOutcome outcome = {};
        std::wstring waiting = {};  ///< told before the answer
        bool isHeld = false;        ///< until it is released, or the request is cancelled
        bool isDeaf = false;        ///< and then even if it is cancelled
    };

    void Set(const std::string& page, Reply reply) {
        const std::lock_guard guard(lock_);
        replies_[page] = std::move(reply);
        changed_.notify_all();
    }
    void Release(const std::string& page) {
        const std::lock_guard guard(lock_);
        replies_[page].isHeld = false;
        changed_.notify_all();
    }
    /// Pages in the order in which they were asked for.
    std::vector<std::string> Asked() const {
        const std::lock_guard guard(lock_);
        return asked_;
    }
    std::set<std::wstring> Tokens() const {
        const std::lock_guard guard(lock_);
        return tokens_;
    }
    /// Requests that have not ended.
    int Running() const {
        const std::lock_guard guard(lock_);
        return running_;
    }

    /// Keeps the cloud alive as long as a request does.
    static CloudLibrary Library(const std::shared_ptr<FakeCloud>& cloud) {
        CloudLibrary library;
        library.listProjects = [cloud](const CloudAccount& account, ArchivingProjectList& list,
                                       const std::wstring& filter, const CloudCall& call) {
            const Reply reply = cloud->Answer("projects", list.next, account, call);
            list.outcome = reply.outcome;
            if (reply.outcome.status == CloudStatus::Ok && filter.empty()) {
                list.projects = reply.projects;
                list.next = reply.next;
            }
        };
        library.getFiles = [cloud](const CloudAccount& account, const std::string& project,
                                   const std::string& page, std::string& json, const CloudCall& call) {
            const Reply reply = cloud->Answer(project, page, account, call);
            json = reply.json;
            return reply.outcome;
        };
        return library;
    }

  private:
    Reply Answer(const std::string& list, const std::string& page, const CloudAccount& account,
                 const CloudCall& call) {
        const std::string name = page.empty() ? list : list + "@" + page;
        std::unique_lock guard(lock_);
        ++running_;
        asked_.push_back(name);
        tokens_.insert(account.token);
        if (!replies_[name].waiting.empty()) {
            call.waiting(replies_[name].waiting);
        }
        bool isCancelled = false;
        while (replies_[name].isHeld && !isCancelled) {
            changed_.wait_for(guard, std::chrono::milliseconds(1));
            isCancelled = call.isCancelled() && !replies_[name].isDeaf;
        }
        --running_;
        return isCancelled ? Reply{.outcome = {CloudStatus::Cancelled, {}}} : replies_[name];
    }

    mutable std::mutex lock_;
    std::condition_variable changed_;
    std::map<std::string, Reply> replies_;
    std::vector<std::string> asked_;
    std::set<std::wstring> tokens_;
    int running_ = 0;
};

inline constexpr const char* kSecret = "5ec4e7";

inline std::string LayerJson(const std::string& name, const std::string& id) {
    return R"({"name":")" + name + R"(","type":"LAZ","wkt":"PROJCS[\"x\"]","bytes":1610612736,"points":12,)" +
           R"("crs":"EPSG:25832","url":"https://h/)" + id + ".laz?X-Amz-Signature=" + kSecret +
           R"(","id":")" + id + R"(","project":"p"})";
}

/// A page of layers called by their ids.
inline std::string Listing(const std::vector<std::string>& ids, const std::string& next = {}) {
    std::string json = R"({"next":")" + next + R"(","layers":[)";
    for (const std::string& id : ids) {
        json += (json.back() == '[' ? "" : ",") + LayerJson(id, id);
    }
    return json + "]}";
}

class BrowseCloudLayers : public BrowserFixture {
  protected:
    BrowseCloudLayers() {
        library = FakeCloud::Library(cloud);
        hostObjects.account = FakeAccount{L"anna", L"https://cloud.example/v", L"t0ken"};
        cloud->Set("projects", {.projects = {{"Bay", "p1"}, {"Coast", "p2"}, {"Dunes", "p3"}}});
        cloud->Set("p1", {.json = Listing({"a", "b", "c"})});
        cloud->Set("p2", {.json = Listing({"d", "e"})});
        cloud->Set("p3", {.json = Listing({})});
    }
    ~BrowseCloudLayers() override {
        dialog.reset();
        for (const char* page : {"projects", "p1", "p2", "p3", "p1@2"}) {
            cloud->Release(page);
        }
        EXPECT_TRUE(QTest::qWaitFor([this] { return cloud->Running() == 0; }));
    }
    /// Opens the dialog, and waits for the first project's layers.
    void OpenAndRead() {
        Open();
        ASSERT_TRUE(Until([this] { return Layers() == std::vector<std::wstring>{L"a", L"b", L"c"}; }));
        ASSERT_TRUE(Until([this] { return IsIdle("layers") && IsIdle("projects"); }));
    }

    std::shared_ptr<FakeCloud> cloud = std::make_shared<FakeCloud>();
};

}  // namespace orvex::testing
