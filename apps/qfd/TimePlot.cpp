#include "TimePlot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace qfd {
namespace {

using TimeSim::Spread;
using TimeSim::TimeSurvey;

constexpr double pictureWidth = 960;
constexpr double left = 90;
constexpr double right = pictureWidth - 20;
constexpr double chartHeight = 170;
constexpr double firstTop = 95;
constexpr double chartStep = chartHeight + 50;

struct Chart {
    char const* title;
    char const* colour;
    Spread TimeSurvey::*quantity;
    double unit;  ///< nanoseconds
};

constexpr Chart charts[] = {
    {"Round trip, µs", "#1f6fb4", &TimeSurvey::roundTrip, 1000},
    {"Offset of the frame's clock since the first reply, µs", "#2a8a4a", &TimeSurvey::offset, 1000},
    {"Field period, ns", "#a0522d", &TimeSurvey::period, 1},
};
constexpr double pictureHeight = firstTop + chartStep * 3;

std::string number(double value, int decimals = 1) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string escapedXml(std::string const& text) {
    std::string out;
    for (char const byte : text) {
        out += byte == '<' ? "&lt;" : byte == '&' ? "&amp;" : std::string(1, byte);
    }
    return out;
}

/// Values from `low` to `high`, with marks at round numbers.
struct Axis {
    double low, high, step;

    Axis(double least, double most, double atLeast, double parts = 4) : low(least), high(most) {
        auto const missing = std::max(0.0, atLeast - (high - low));
        low -= missing / 2;
        high += missing / 2;
        auto const rough = (high - low) / parts;
        auto const ten = std::pow(10, std::floor(std::log10(rough)));
        step = (rough <= 2 * ten ? 2 : rough <= 5 * ten ? 5 : 10) * ten;
    }
    double share(double value) const { return (value - low) / (high - low); }
    std::vector<double> marks() const {
        std::vector<double> all;
        for (auto mark = std::ceil(low / step); mark * step <= high; ++mark) {
            // Zero plus zero is zero, but minus zero has a sign.
            all.push_back(mark * step + 0.0);
        }
        return all;
    }
    int decimals() const { return std::max(0, static_cast<int>(-std::floor(std::log10(step)))); }
};

class Plot {
  public:
    explicit Plot(TimeSim::TimeHistory const& measured)
        : history(measured),
          stretch(static_cast<double>(history.stretch().count()) / 1e9),
          time(0, stretch * static_cast<double>(std::max<std::size_t>(1, count())), 0, 10) {}

    std::string draw(std::string const& title, std::string const& subtitle) {
        out = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + number(pictureWidth, 0) +
              "\" height=\"" + number(pictureHeight, 0) +
              "\" font-family=\"sans-serif\" font-size=\"12\">\n"
              "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
        text(left, 30, "start", title, " font-size=\"17\"");
        text(left, 50, "start", subtitle, " fill=\"#555555\"");
        top = firstTop;
        for (auto const& chart : charts) {
            drawChart(chart);
            top += chartStep;
        }
        text(left, top - 10, "start",
             "Over seconds. Bar: lowest to highest; line: mean; red mark: no answer.",
             " fill=\"#555555\"");
        return out + "</svg>\n";
    }

  private:
    std::size_t count() const { return history.surveys().size(); }
    double x(double seconds) const { return left + time.share(seconds) * (right - left); }
    double y(Axis const& axis, double value) const {
        return top + chartHeight * (1 - axis.share(value));
    }

    Axis axisOf(Chart const& chart) const {
        Spread all;
        for (auto const& survey : history.surveys()) {
            all.add(survey.*chart.quantity);
        }
        auto const least = all.lowest() / chart.unit, most = all.highest() / chart.unit;
        auto const margin = (most - least) * 0.05;
        return {least - margin, most + margin, 4};
    }

    void drawChart(Chart const& chart) {
        auto const axis = axisOf(chart);
        text(left, top - 8, "start", chart.title);
        for (auto const mark : axis.marks()) {
            line(left, y(axis, mark), right, y(axis, mark), "#dddddd");
            text(left - 6, y(axis, mark) + 4, "end", number(mark, axis.decimals()));
        }
        for (auto const mark : time.marks()) {
            line(x(mark), top, x(mark), top + chartHeight, "#eeeeee");
            text(x(mark), top + chartHeight + 16, "middle", number(mark, time.decimals()));
        }
        drawValues(chart, axis);
        drawLost();
        out += "<rect x=\"" + number(left) + "\" y=\"" + number(top) + "\" width=\"" +
               number(right - left) + "\" height=\"" + number(chartHeight) +
               "\" fill=\"none\" stroke=\"#888888\"/>\n";
    }

    void drawValues(Chart const& chart, Axis const& axis) {
        std::string bars, means;
        for (std::size_t index = 0; index < count(); ++index) {
            auto const& values = history.surveys()[index].*chart.quantity;
            if (values.count() == 0) {
                continue;
            }
            auto const across = number(x((static_cast<double>(index) + 0.5) * stretch));
            bars += "M" + across + " " + number(y(axis, values.lowest() / chart.unit)) + "V" +
                    number(y(axis, values.highest() / chart.unit));
            means += (means.empty() ? "M" : "L") + across + " " +
                     number(y(axis, values.mean() / chart.unit));
        }
        if (means.empty()) {
            text((left + right) / 2, top + chartHeight / 2, "middle", "not measured");
        }
        auto const width = std::max(1.0, (right - left) / static_cast<double>(count() + 1));
        path(bars, chart.colour, " stroke-opacity=\"0.3\" stroke-width=\"" + number(width) + "\"");
        path(means, chart.colour, " stroke-width=\"1.5\"");
    }

    void drawLost() {
        for (std::size_t index = 0; index < count(); ++index) {
            if (history.surveys()[index].lost > 0) {
                auto const across = x((static_cast<double>(index) + 0.5) * stretch);
                line(across, top + chartHeight - 8, across, top + chartHeight, "#d01010");
            }
        }
    }

    void path(std::string const& data, std::string const& colour, std::string const& more) {
        if (!data.empty()) {
            out +=
                "<path d=\"" + data + "\" fill=\"none\" stroke=\"" + colour + "\"" + more + "/>\n";
        }
    }
    void line(double x1, double y1, double x2, double y2, std::string const& colour) {
        path("M" + number(x1) + " " + number(y1) + "L" + number(x2) + " " + number(y2), colour, "");
    }
    void text(double across, double down, std::string const& anchor, std::string const& what,
              std::string const& more = "") {
        out += "<text x=\"" + number(across) + "\" y=\"" + number(down) + "\" text-anchor=\"" +
               anchor + "\"" + more + ">" + escapedXml(what) + "</text>\n";
    }

    TimeSim::TimeHistory const& history;
    double stretch;  // seconds
    Axis time;
    double top = 0;
    std::string out;
};

}  // namespace

std::string timePlot(std::string const& title, std::string const& subtitle,
                     TimeSim::TimeHistory const& history) {
    return Plot(history).draw(title, subtitle);
}

}  // namespace qfd
