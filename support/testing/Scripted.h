#pragma once
// Halves of the seams that answer from a script and keep what they were asked.
#include <deque>
#include <vector>

#include "support/FilePickers.h"
#include "support/HelpViewer.h"
#include "support/HostObjects.h"
#include "support/LDataError.h"
#include "support/ProgressIf.h"
#include "support/UserPrompts.h"

namespace orvex::testing {

/// The next of a script, which loses it; `otherwise` when the script is over.
template <typename T>
T Next(std::deque<T>& script, T otherwise) {
    if (!script.empty()) {
        otherwise = std::move(script.front());
        script.pop_front();
    }
    return otherwise;
}

/// Answers from `answers` in order; when they run out with the kindest answer (Ok, Yes).
class ScriptedPrompts final : public UserPrompts {
  public:
    std::deque<PromptAnswer> answers;
    std::deque<TaskAnswer> taskAnswers;
    std::vector<Prompt> shown;
    std::vector<TaskPrompt> tasksShown;
    std::deque<PromptAnswer> reportAnswers;
    std::vector<ReportPrompt> reportsShown;

    PromptAnswer Show(const Prompt& prompt) override {
        shown.push_back(prompt);
        return Next(answers, prompt.buttons == PromptButtons::Ok ? PromptAnswer::Ok : PromptAnswer::Yes);
    }
    TaskAnswer ShowTask(const TaskPrompt& prompt) override {
        tasksShown.push_back(prompt);
        return Next(taskAnswers, {PromptAnswer::Yes, false});
    }
    PromptAnswer ShowReport(const ReportPrompt& prompt) override {
        reportsShown.push_back(prompt);
        return Next(reportAnswers, PromptAnswer::Yes);
    }
};

class ScriptedPickers final : public FilePickers {
  public:
    std::deque<PickedFiles> files;
    std::deque<std::optional<std::wstring>> folders;
    std::vector<OpenFilesRequest> asked;
    std::vector<std::wstring> folderTitles;
    std::vector<std::wstring> folderStarts;  ///< where each browser begins
    std::deque<std::wstring> saveFiles;
    std::vector<SaveFileRequest> saveAsked;
    std::vector<std::wstring> shownInFolder;
    bool canShowFolders = true;
    std::wstring failure;  ///< thrown by the first two unless empty

    PickedFiles PickFiles(const OpenFilesRequest& request) override {
        ThrowFailure();
        asked.push_back(request);
        return Next(files, {});
    }
    std::optional<std::wstring> PickFolder(const std::wstring& title,
                                           const std::wstring& initialFolder) override {
        ThrowFailure();
        folderTitles.push_back(title);
        folderStarts.push_back(initialFolder);
        return Next(folders, {});
    }
    std::optional<std::wstring> PickSaveFile(const SaveFileRequest& request) override {
        saveAsked.push_back(request);
        return saveFiles.empty() ? std::nullopt : std::optional(Next(saveFiles, {}));
    }
    bool ShowInFolder(const std::wstring& path) override {
        shownInFolder.push_back(path);
        return canShowFolders;
    }

  private:
    void ThrowFailure() const {
        if (!failure.empty()) {
            throw LDataError(failure);
        }
    }
};

class RecordingHelpViewer final : public HelpViewer {
  public:
    std::vector<HelpTopic> shown;
    bool works = true;
    bool Show(HelpTopic topic) override {
        shown.push_back(topic);
        return works;
    }
    std::wstring ManualPath() const override { return L"/manual/index.html"; }
};

/// Stops when `stopAfter` positions have been told (never when negative).
class RecordingProgress : public Kst::ProgressIf {
  public:
    std::uint64_t total = 0;
    std::uint64_t position = 0;
    std::vector<std::wstring> texts;
    int stopAfter = -1;
    int told = 0;

    void SetRange(std::uint64_t range) override { total = range; }
    void SetText(const std::wstring& text) override { texts.push_back(text); }
    void SetPosition(std::uint64_t done) override {
        position = done;
        ++told;
    }
    bool IsCancelled() override { return stopAfter >= 0 && told >= stopAfter; }
};

}  // namespace orvex::testing
