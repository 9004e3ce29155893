#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vantra {

// The points of one line, already few: at most two per pixel column.
struct ChartLine {
  std::string label;
  std::vector<double> x;
  std::vector<double> y;
};

// Reduces a long run of samples to the lowest and highest value per column of the chart, so that the
// drawn line keeps every peak while the file stays small.
class ColumnReducer {
 public:
  ColumnReducer(std::uint64_t samples, unsigned columns) : m_samples(samples), m_columns(columns) {}
  void add(std::uint64_t position, double x, double y);
  ChartLine finish(std::string label);

 private:
  void flush();

  std::uint64_t m_samples;
  unsigned m_columns;
  ChartLine m_line;
  std::uint64_t m_column = UINT64_MAX;
  bool m_any = false;
  double m_x = 0, m_first = 0, m_last = 0, m_low = 0, m_high = 0;
};

// The width in pixels of a chart's plotting area.
inline constexpr unsigned chartColumns = 720;

// An SVG line chart of `lines` with ticked axes, titles and a legend.
std::string chartSvg(std::vector<ChartLine> const &lines, std::string const &xTitle, std::string const &yTitle);

}  // namespace vantra
