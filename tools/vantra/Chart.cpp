#include "Chart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <sstream>

namespace vantra {

namespace {

constexpr double width = 800, height = 450;
constexpr double left = 80, right = 780, top = 50, bottom = 390;  // the plotting area
char const *const palette[] = {"#1f77b4", "#d62728", "#2ca02c", "#ff7f0e", "#9467bd", "#8c564b", "#e377c2", "#17becf"};

std::string escaped(std::string const &text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
  return out;
}

std::string number(double value, int digits) {
  char text[40];
  std::snprintf(text, sizeof text, "%.*g", digits, value);
  return text;
}

struct Scale {
  double lo, hi, step;
};

// Round steps of 1, 2 or 5 times a power of ten, about six of them across the range.
Scale niceScale(double lo, double hi) {
  if (!(lo < hi)) {
    double const pad = lo == 0 ? 1 : std::fabs(lo) * 0.1;
    lo -= pad;
    hi += pad;
  }
  double const raw = (hi - lo) / 6;
  double const magnitude = std::pow(10.0, std::floor(std::log10(raw)));
  double const norm = raw / magnitude;
  double const step = (norm < 1.5 ? 1 : norm < 3 ? 2 : norm < 7 ? 5 : 10) * magnitude;
  return Scale{std::floor(lo / step) * step, std::ceil(hi / step) * step, step};
}

void range(std::vector<double> const &values, double &lo, double &hi) {
  for (double const v : values) {
    if (!std::isfinite(v)) continue;
    lo = std::min(lo, v);
    hi = std::max(hi, v);
  }
}

}  // namespace

void ColumnReducer::add(std::uint64_t position, double x, double y) {
  std::uint64_t const column =
      m_samples <= 2ull * m_columns ? position
                                    : static_cast<std::uint64_t>((static_cast<long double>(position) * m_columns) / m_samples);
  if (column != m_column) {
    flush();
    m_column = column;
    m_x = x;
    m_any = false;
  }
  if (std::isnan(y)) return;
  if (!m_any) m_first = m_low = m_high = y;
  m_low = std::min(m_low, y);
  m_high = std::max(m_high, y);
  m_last = y;
  m_any = true;
}

// Enters and leaves each column where the samples did, passing through its extremes.
void ColumnReducer::flush() {
  if (!m_any) return;
  bool const rising = m_last >= m_first;
  for (double const y : {m_first, rising ? m_low : m_high, rising ? m_high : m_low, m_last}) {
    if (!m_line.y.empty() && m_line.y.back() == y && m_line.x.back() == m_x) continue;
    m_line.x.push_back(m_x);
    m_line.y.push_back(y);
  }
  m_any = false;
}

ChartLine ColumnReducer::finish(std::string label) {
  flush();
  m_line.label = std::move(label);
  return std::move(m_line);
}

std::string chartSvg(std::vector<ChartLine> const &lines, std::string const &xTitle, std::string const &yTitle) {
  double xlo = std::numeric_limits<double>::infinity(), xhi = -xlo, ylo = xlo, yhi = -xlo;
  for (ChartLine const &line : lines) {
    range(line.x, xlo, xhi);
    range(line.y, ylo, yhi);
  }
  if (!std::isfinite(xlo)) xlo = xhi = ylo = yhi = 0;
  Scale const xs = niceScale(xlo, xhi);
  Scale const ys = niceScale(ylo, yhi);
  auto const px = [&](double x) { return left + (x - xs.lo) / (xs.hi - xs.lo) * (right - left); };
  auto const py = [&](double y) { return bottom - (y - ys.lo) / (ys.hi - ys.lo) * (bottom - top); };

  std::ostringstream svg;
  svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\"" << height
      << "\" viewBox=\"0 0 " << width << ' ' << height << "\" font-family=\"sans-serif\" font-size=\"12\">\n"
      << "<rect width=\"" << width << "\" height=\"" << height << "\" fill=\"white\"/>\n"
      << "<g stroke=\"#e0e0e0\" stroke-width=\"1\">\n";
  std::ostringstream labels;
  for (double x = xs.lo; x <= xs.hi + xs.step / 2; x += xs.step) {
    double const at = px(x);
    svg << "<line x1=\"" << number(at, 6) << "\" y1=\"" << top << "\" x2=\"" << number(at, 6) << "\" y2=\""
        << bottom << "\"/>\n";
    labels << "<text x=\"" << number(at, 6) << "\" y=\"" << bottom + 18 << "\" text-anchor=\"middle\">"
           << number(std::fabs(x) < xs.step / 1e6 ? 0 : x, 10) << "</text>\n";
  }
  for (double y = ys.lo; y <= ys.hi + ys.step / 2; y += ys.step) {
    double const at = py(y);
    svg << "<line x1=\"" << left << "\" y1=\"" << number(at, 6) << "\" x2=\"" << right << "\" y2=\""
        << number(at, 6) << "\"/>\n";
    labels << "<text x=\"" << left - 6 << "\" y=\"" << number(at + 4, 6) << "\" text-anchor=\"end\">"
           << number(std::fabs(y) < ys.step / 1e6 ? 0 : y, 10) << "</text>\n";
  }
  svg << "</g>\n<rect x=\"" << left << "\" y=\"" << top << "\" width=\"" << right - left << "\" height=\""
      << bottom - top << "\" fill=\"none\" stroke=\"#333\"/>\n<g fill=\"#333\">\n"
      << labels.str()
      << "<text x=\"" << (left + right) / 2 << "\" y=\"" << bottom + 42 << "\" text-anchor=\"middle\">"
      << escaped(xTitle) << "</text>\n"
      << "<text x=\"18\" y=\"" << (top + bottom) / 2 << "\" text-anchor=\"middle\" transform=\"rotate(-90 18 "
      << (top + bottom) / 2 << ")\">" << escaped(yTitle) << "</text>\n</g>\n";
  double legendX = left;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    char const *const colour = palette[i % (sizeof palette / sizeof *palette)];
    svg << "<polyline fill=\"none\" stroke=\"" << colour << "\" stroke-width=\"1.5\" points=\"";
    for (std::size_t p = 0; p < lines[i].x.size(); ++p) {
      if (!std::isfinite(lines[i].y[p]) || !std::isfinite(lines[i].x[p])) continue;
      svg << number(px(lines[i].x[p]), 5) << ',' << number(py(lines[i].y[p]), 5) << ' ';
    }
    svg << "\"/>\n<rect x=\"" << legendX << "\" y=\"22\" width=\"14\" height=\"4\" fill=\"" << colour
        << "\"/>\n<text x=\"" << legendX + 20 << "\" y=\"28\">" << escaped(lines[i].label) << "</text>\n";
    legendX += 30 + 7.0 * static_cast<double>(lines[i].label.size());
  }
  svg << "</svg>\n";
  return svg.str();
}

}  // namespace vantra
