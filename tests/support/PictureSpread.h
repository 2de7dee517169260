#pragma once

#include <QImage>

#include <algorithm>
#include <cmath>

/// How much a picture varies: the standard deviation of its grey levels, 0 for a flat area such
/// as a video that never drew.
inline double pictureSpread(const QImage &image)
{
    if (image.isNull())
        return 0;
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8).scaled(64, 36);
    double sum = 0, squares = 0;
    const int n = grey.width() * grey.height();
    for (int y = 0; y < grey.height(); ++y)
        for (int x = 0; x < grey.width(); ++x) {
            const double v = qGray(grey.pixel(x, y));
            sum += v;
            squares += v * v;
        }
    const double mean = sum / n;
    return std::sqrt(std::max(squares / n - mean * mean, 0.0));
}
