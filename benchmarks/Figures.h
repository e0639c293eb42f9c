#pragma once
#include <string>
#include <vector>

namespace orvex::bench {

/// Figures of a run: each is printed as it comes, "figure<TAB>name<TAB>value<TAB>unit", and all are kept for
/// a file.
class Figures {
  public:
    void Add(const std::string& name, double value, const std::string& unit);
    /// A JSON array of {name, value, unit}, through a temporary name. False when it cannot be written.
    bool Write(const std::string& path) const;

  private:
    struct Figure {
        std::string name;
        double value;
        std::string unit;
    };
    std::vector<Figure> figures_;
};

}  // namespace orvex::bench
