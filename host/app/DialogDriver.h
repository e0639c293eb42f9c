#pragma once
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <iosfwd>
#include <mutex>
#include <set>
#include <string>
#include <thread>

class QAbstractButton;
class QWidget;

namespace orvex {

/// The Add Files dialog while it is open on top, else null.
QWidget* FindAddFilesDialog();

/// The button of a message or question that says yes: Yes, OK or Close; null when it has none.
QAbstractButton* AgreeingButton(QWidget* window);

/// Ends the process with kWatchdogExit when it outlives its time, after writing to the standard error stream
/// what was waited for. It has a thread of its own: a blocked event loop does not stop it.
class Watchdog {
  public:
    explicit Watchdog(std::chrono::seconds patience);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// What is waited for from now on.
    void WaitingFor(const std::string& what);

  private:
    void Watch();

    const std::chrono::steady_clock::time_point end_;
    std::mutex lock_;
    std::condition_variable ended_;
    bool done_ = false;
    std::string what_;
    std::jthread thread_;
};

inline constexpr int kWatchdogExit = 4;

/// Uses the Add Files dialog as a person would, without one: waits for it and for its files, looks at each
/// tab, takes pictures, presses OK. Any other window that gets in the way is photographed, reported and
/// answered with Yes or OK. It works from a timer, so it lives beside modal dialogs.
class DialogDriver final : public QObject {
    Q_OBJECT

  public:
    struct Settings {
        QString pictureFolder;  ///< empty: no pictures
        QString pictureSuffix;  ///< behind each picture's name
        QString cloudUrl;       ///< entered as a pre-signed URL; empty: no cloud layers are added
        QStringList photos;     ///< dropped on the photo page: by their names alone images are rasters
    };

    /// `out` gets a line for each message and for each picture that cannot be saved.
    DialogDriver(Settings settings, std::ostream& out, Watchdog& watchdog);

    void Start();
    /// Saves a picture of a widget as it is now.
    void TakePicture(QWidget* widget, const QString& name);
    /// The tabs whose grid held files when they were looked at: "las", "raster", "dem".
    const std::set<QString>& TabsWithFiles() const { return tabsWithFiles_; }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    struct Step {
        QString waitsFor;
        std::function<bool()> isReady;
        std::function<void()> run;
    };

    void Tick();
    void RunStep();
    bool AnswerOtherWindow();
    void Answer(QWidget* window);
    bool AnswerMenu();
    bool UseCloudDialog(QWidget* window);
    bool HasRead(QWidget* browser);
    QAbstractButton* PickLayers(QWidget* browser);
    void Add(const QString& waitsFor, std::function<bool()> isReady, std::function<void()> run);
    void AddWhenIdle(const QString& waitsFor, std::function<void()> run);
    void AddDialogSteps();
    void AddTabSteps(int tab);
    void TakeTabPicture(const QString& suffix = {});
    void DropPhotos();
    void OpenAddMenu(int command);
    void ClickOnCloudPage(const char* button);
    void ToggleDetailColumns();
    void ChooseCompanions();
    bool IsIdle();
    QString CurrentTabName() const;

    Settings settings_;
    std::ostream& out_;
    Watchdog& watchdog_;
    QTimer timer_;
    std::deque<Step> steps_;
    QWidget* dialog_ = nullptr;
    std::set<QString> tabsWithFiles_;
    QWidget* answered_ = nullptr;
    QWidget* reading_ = nullptr;  ///< the cloud layer browser that has begun to read
    int menuCommand_ = 0;         ///< of the cloud page's add menu, which is about to open
    int quietTicks_ = 0;
    int messages_ = 0;
    bool inStep_ = false;
};

}  // namespace orvex
