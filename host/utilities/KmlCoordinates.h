#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace orvex {

/// Reads the tuples of a text as it comes in pieces: "2,49,0 3,50,0", and with blanks "2 49 0" for one tuple.
/// Blanks beside a comma do not end a tuple.
class KmlCoordinates {
  public:
    enum class Form { Tuples, OneTuple };
    /// Called with the first two numbers of a tuple.
    using Visit = std::function<void(double x, double y)>;

    explicit KmlCoordinates(Visit visit) : visit_(std::move(visit)) {}

    void Start(Form form);
    void Add(std::string_view text);
    void Finish();

    /// Tuples without two numbers so far.
    std::uint64_t Unreadable() const { return unreadable_; }

  private:
    void EndNumber();
    void EndTuple();

    const Visit visit_;
    Form form_ = Form::Tuples;
    std::string number_;
    int index_ = 0;  ///< of the next number in its tuple
    bool hasBlank_ = false;
    double x_ = 0;
    bool isBad_ = false;
    std::uint64_t unreadable_ = 0;
};

}  // namespace orvex
