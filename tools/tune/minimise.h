// Derivative-free minimisation within bounds.
#ifndef VOREL_TOOLS_TUNE_MINIMISE_H_
#define VOREL_TOOLS_TUNE_MINIMISE_H_

#include <functional>
#include <vector>

namespace tool {

struct Bounds {
  double lower;
  double upper;
};

// Improves `point`, which must lie within the bounds and have at least two coordinates, by
// quadratic models of `cost`; gives the cost reached. Ends when steps fall below `tolerance` or
// after `evaluations`. Does the same in every run.
double minimise(const std::function<double(const std::vector<double>&)>& cost,
                const std::vector<Bounds>& bounds, double first_step, double tolerance,
                int evaluations, std::vector<double>& point);

}  // namespace tool

#endif  // VOREL_TOOLS_TUNE_MINIMISE_H_
