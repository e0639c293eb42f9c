#pragma once
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <deque>
#include <functional>
#include <iosfwd>

namespace orvex {

class Watchdog;

/// Uses the Add Files dialog as a person would, without one: waits for it, drops files on it, looks at every
/// tab, takes pictures, presses OK. Whatever other window gets in the way is photographed, told of and
/// answered with Yes or OK. It works from a timer, so it lives beside modal dialogs; nothing is waited for by
/// sleeping.
class DialogDriver final : public QObject {
    Q_OBJECT

  public:
    struct Settings {
        QStringList paths;      ///< dropped on the first tab
        QString pictureFolder;  ///< empty: no pictures
        QString pictureSuffix;  ///< behind each picture's name
    };

    /// `out` gets a line for everything worth telling.
    DialogDriver(Settings settings, std::ostream& out, Watchdog& watchdog);

    void Start();
    /// Saves a picture of a widget as it is now.
    void TakePicture(QWidget* widget, const QString& name);

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
    void AddLasSteps();
    void AddTabSteps();
    bool IsIdle();
    QString CurrentTabName() const;

    Settings settings_;
    std::ostream& out_;
    Watchdog& watchdog_;
    QTimer timer_;
    std::deque<Step> steps_;
    QWidget* dialog_ = nullptr;
    QWidget* answered_ = nullptr;
    int quietTicks_ = 0;
    int messages_ = 0;
    bool inStep_ = false;
};

}  // namespace orvex
