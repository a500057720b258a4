#pragma once

namespace tarnwick::controls {

/// A width and a height in pixels.
struct Extent {
  int Width = 0;
  int Height = 0;
  bool operator==(const Extent&) const = default;
};

/// A rectangle in pixels; Right and Bottom lie just outside it.
struct Rect {
  int Left = 0;
  int Top = 0;
  int Right = 0;
  int Bottom = 0;

  int Width() const { return Right - Left; }
  int Height() const { return Bottom - Top; }
  bool Contains(int x, int y) const { return x >= Left && x < Right && y >= Top && y < Bottom; }
  void MoveDown(int pixels) {
    Top += pixels;
    Bottom += pixels;
  }
  bool operator==(const Rect&) const = default;
};

}  // namespace tarnwick::controls
