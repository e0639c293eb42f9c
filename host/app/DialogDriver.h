#pragma once
#include <QObject>
#include <QTimer>
#include <deque>
#include <functional>
#include <iosfwd>
#include <set>

#include "host/app/DropPlan.h"

namespace orvex {

class Watchdog;

/// Uses the Add Files dialog as a person would, without one: waits for it, drops files on its tabs, looks at
/// each, takes pictures, presses OK. Whatever other window gets in the way is photographed, told of and
/// answered with Yes or OK. It works from a timer, so it lives beside modal dialogs; nothing is waited for by
/// sleeping.
class DialogDriver final : public QObject {
    Q_OBJECT

  public:
    struct Settings {
        DropPlan plan;          ///< dropped on the tabs
        QString pictureFolder;  ///< empty: no pictures
        QString pictureSuffix;  ///< behind each picture's name
    };

    /// `out` gets a line for everything worth telling.
    DialogDriver(Settings settings, std::ostream& out, Watchdog& watchdog);

    void Start();
    /// Saves a picture of a widget as it is now.
    void TakePicture(QWidget* widget, const QString& name);
    /// The tabs whose grid held files when they were looked at: "las", "raster", "dem".
    const std::set<QString>& TabsWithFiles() const { return tabsWithFiles_; }

  private:
    struct Step {
        QString waitsFor;
        std::function<bool()> ready;
        std::function<void()> run;
    };

    void Tick();
    void RunStep();
    bool AnswerOtherWindow();
    void Answer(QWidget* window);
    void Add(const QString& waitsFor, std::function<bool()> ready, std::function<void()> run);
    void AddSteps();
    void AddDialogSteps();
    void AddPageSteps(const char* page, const QString& name, const QStringList& paths);
    void AddOtherTabSteps();
    void ToggleDetailColumns();
    void NoteFiles();
    bool IsIdle();
    QString CurrentTabName() const;

    Settings settings_;
    std::ostream& out_;
    Watchdog& watchdog_;
    QTimer timer_;
    std::deque<Step> steps_;
    QWidget* dialog_ = nullptr;
    std::set<QString> tabsWithFiles_;
    std::set<QString> tabsShown_;
    QWidget* answered_ = nullptr;
    int quietTicks_ = 0;
    int messages_ = 0;
    bool inStep_ = false;
};

}  // namespace orvex
