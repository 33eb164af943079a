#pragma once

#include "Core/tests/Support/Picture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace qel::test {

/// The search for a shape as it is told, word for word: no reuse, no order of its own.
class DirectMatching
{
public:
    struct Settings
    {
        unsigned numOfLevel = 4;
        bool absolute = false;
        double rotationBegin = 0, rotationEnd = 360, rotationStep = 10;
        double scaleBegin = 0.5, scaleEnd = 1.8, scaleStep = 0.1;
    };
    struct Result
    {
        double tx = 0, ty = 0, scale = 1, rotation = 0;
    };

    template <class T> static Picture<T> halved(Picture<T> const& in, bool takesMaximum)
    {
        Shape shape = in.shape;
        shape.columns = (shape.columns + 1) / 2;
        shape.rows = (shape.rows + 1) / 2;
        Picture<T> out(shape);
        forEachVoxel(shape, [&](auto x, auto y, auto p, auto t, auto s) {
            auto const right = std::min(2 * x + 1, in.shape.columns - 1);
            auto const below = std::min(2 * y + 1, in.shape.rows - 1);
            T const square[] = {in.at(2 * x, 2 * y, p, t, s), in.at(right, 2 * y, p, t, s),
                                in.at(2 * x, below, p, t, s), in.at(right, below, p, t, s)};
            if (takesMaximum) {
                out.at(x, y, p, t, s) = *std::max_element(square, square + 4);
            } else {
                float sum = 0;
                for (T const voxel : square)
                    sum += static_cast<float>(voxel);
                out.at(x, y, p, t, s) = static_cast<T>(sum * 0.25f);
            }
        });
        return out;
    }

    template <class X, class Y, class TX, class TY, class M>
    static Result run(Picture<X> x, Picture<Y> y, Picture<TX> tx, Picture<TY> ty, Picture<M> mask,
                      Settings const& settings)
    {
        std::vector<Level> levels;
        for (unsigned level = 0; level < settings.numOfLevel; ++level) {
            if (level > 0) {
                x = halved(x, false);
                y = halved(y, false);
                tx = halved(tx, false);
                ty = halved(ty, false);
                mask = halved(mask, true);
            }
            levels.push_back({doubles(x), doubles(y), doubles(tx), doubles(ty), doubles(mask)});
        }
        Result result;
        Best best;
        for (unsigned level = settings.numOfLevel; level-- > 0;) {
            Level const& images = levels[level];
            long const columns = static_cast<long>(images.x.shape.columns);
            long const rows = static_cast<long>(images.x.shape.rows);
            long left = 0, right = columns - 1, top = 0, bottom = rows - 1;
            if (level + 1 < settings.numOfLevel) {
                left = std::max(2 * best.x - 5, 0l);
                right = std::min(2 * best.x + 5, columns - 1);
                top = std::max(2 * best.y - 5, 0l);
                bottom = std::min(2 * best.y + 5, rows - 1);
            }
            double centerX = 0, centerY = 0;
            std::vector<Point> const shape = shapeOf(images, centerX, centerY);
            best = Best();
            double bestScore = std::numeric_limits<double>::lowest();
            for (double s = settings.scaleBegin; s <= settings.scaleEnd; s += settings.scaleStep) {
                for (double r = settings.rotationBegin; r <= settings.rotationEnd; r += settings.rotationStep) {
                    double const c = cosine(r), sn = cosine(r - 90);
                    std::vector<Point> turned;
                    for (Point const& p : shape)
                        turned.push_back({s * (c * (p.x - centerX) - sn * (p.y - centerY)),
                                          s * (sn * (p.x - centerX) + c * (p.y - centerY)), c * p.gx - sn * p.gy,
                                          sn * p.gx + c * p.gy});
                    Shape const& all = images.x.shape;
                    for (unsigned long t = 0; t < all.timeSeries; ++t)
                        for (unsigned long plan = 0; plan < all.plans; ++plan)
                            for (unsigned long series = 0; series < all.spectralSeries; ++series)
                                for (long row = top; row <= bottom; ++row)
                                    for (long column = left; column <= right; ++column) {
                                        double sum = 0;
                                        for (Point const& p : turned) {
                                            long const atX = column + static_cast<long>(p.x);
                                            long const atY = row + static_cast<long>(p.y);
                                            if (atX < 0 || atX >= columns || atY < 0 || atY >= rows)
                                                continue;
                                            double const gx = images.x.at(atX, atY, plan, t, series);
                                            double const gy = images.y.at(atX, atY, plan, t, series);
                                            double const length = std::sqrt(gx * gx + gy * gy);
                                            if (length > 0)
                                                sum += (gx * p.gx + gy * p.gy) / length;
                                        }
                                        double const score = settings.absolute ? std::abs(sum) : sum;
                                        if (score > bestScore) {
                                            bestScore = score;
                                            best = {column, row, s, r};
                                        }
                                    }
                }
            }
            if (level == 0) {
                double const c = cosine(best.rotation), sn = cosine(best.rotation - 90);
                result.tx = best.x - (best.scale * c * centerX - best.scale * sn * centerY);
                result.ty = best.y - (best.scale * sn * centerX + best.scale * c * centerY);
                result.scale = best.scale;
                result.rotation = best.rotation;
            }
        }
        return result;
    }

private:
    struct Level
    {
        Picture<double> x, y, tx, ty, mask;
    };
    struct Point
    {
        double x, y, gx, gy;
    };
    struct Best
    {
        long x = 0, y = 0;
        double scale = 0, rotation = 0;
    };

    template <class T> static Picture<double> doubles(Picture<T> const& in)
    {
        return Picture<double>(in.shape, std::vector<double>(in.voxels.begin(), in.voxels.end()));
    }

    // Of degrees, exact for quarter turns.
    static double cosine(double angle)
    {
        double const turned = std::fmod(std::abs(angle), 360);
        if (turned == 0)
            return 1;
        if (turned == 90 || turned == 270)
            return 0;
        return turned == 180 ? -1 : std::cos(angle * (M_PI / 180));
    }

    static std::vector<Point> shapeOf(Level const& images, double& centerX, double& centerY)
    {
        std::vector<Point> shape;
        Shape const& all = images.mask.shape;
        for (unsigned long t = 0; t < all.timeSeries; ++t)
            for (unsigned long plan = 0; plan < all.plans; ++plan)
                for (unsigned long series = 0; series < all.spectralSeries; ++series)
                    for (unsigned long row = 0; row < all.rows; ++row)
                        for (unsigned long column = 0; column < all.columns; ++column)
                            if (images.mask.at(column, row, plan, t, series) > 0)
                                shape.push_back({double(column), double(row),
                                                 images.tx.at(column, row, plan, t, series),
                                                 images.ty.at(column, row, plan, t, series)});
        for (Point const& p : shape) {
            centerX += p.x;
            centerY += p.y;
        }
        centerX /= double(shape.size());
        centerY /= double(shape.size());
        return shape;
    }
};

} // namespace qel::test
