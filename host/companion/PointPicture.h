#pragma once
// A picture of points seen from above.
#include <QImage>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace orvex {

enum class PointColour { Height, Classification };

/// Draws points onto a rectangle of the plane, the upper ones over the lower ones.
class PointPicture {
  public:
    /// Rectangle as minimum X, minimum Y, maximum X, maximum Y; a side without length gets one. `width` in
    /// pixels; the height follows from it, from a sixteenth to four times of it. Points are drawn the larger,
    /// the fewer of them are expected.
    PointPicture(const std::array<double, 4>& rectangle, int width, std::uint64_t expectedPoints);

    /// Adds a point; ignored outside of the rectangle.
    void Add(const std::array<double, 3>& position, std::uint8_t classification);

    std::uint64_t PointCount() const { return points_; }
    int Width() const { return width_; }
    int Height() const { return height_; }
    /// Cells of equal size, about a quarter as many as points were expected, that show how even they lie.
    int CellColumns() const { return cellColumns_; }
    int CellRows() const { return cellRows_; }
    /// Part of those cells that holds a point, 0 to 1.
    double CoveredCells() const;

    /// The picture; heights are coloured in the range of all but the lowest and highest hundredth.
    QImage Image(PointColour colour) const;

  private:
    struct Pixel {
        float height = 0;
        std::uint8_t classification = 0;
        bool isDrawn = false;
    };
    void Dot(int x, int y, const Pixel& pixel);
    std::array<float, 2> HeightRange() const;

    std::array<double, 4> rectangle_;
    int width_;
    int height_;
    int dot_ = 1;  // side of a point in pixels
    int cellColumns_ = 1;
    int cellRows_ = 1;
    std::uint64_t points_ = 0;
    std::vector<Pixel> pixels_;
    std::vector<bool> cells_;
};

/// A rectangle to be outlined, coloured by a number from 0 to 1.
struct Outline {
    std::array<double, 4> rectangle{};
    float colour = 0;
};

/// Picture of a rectangle of the plane with others in it.
QImage DrawOutlines(const std::array<double, 4>& rectangle, int width, const std::vector<Outline>& outlines);

}  // namespace orvex
