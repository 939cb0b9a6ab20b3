#include "tools/tune/minimise.h"

#include <nlopt.h>

#include <algorithm>
#include <memory>

namespace tool {
namespace {

struct Problem {
  const std::function<double(const std::vector<double>&)>& cost;
  std::vector<size_t> free;  // coordinates that have room to move
  std::vector<double> best_point;
  double best_cost;
};

// The best point seen counts, whatever ends the search.
double evaluate(unsigned count, const double* point, double*, void* data) {
  auto& problem = *static_cast<Problem*>(data);
  std::vector<double> candidate = problem.best_point;
  for (unsigned i = 0; i < count; ++i) candidate[problem.free[i]] = point[i];
  const double cost = problem.cost(candidate);
  if (cost < problem.best_cost) {
    problem.best_cost = cost;
    problem.best_point = candidate;
  }
  return cost;
}

struct Release {
  void operator()(nlopt_opt search) const { nlopt_destroy(search); }
};

}  // namespace

double minimise(const std::function<double(const std::vector<double>&)>& cost,
                const std::vector<Bounds>& bounds, double first_step, double tolerance,
                int evaluations, std::vector<double>& point) {
  Problem problem{cost, {}, point, cost(point)};
  std::vector<double> start;
  std::vector<double> lower;
  std::vector<double> upper;
  std::vector<double> steps;
  for (size_t i = 0; i < bounds.size(); ++i) {
    const double room = bounds[i].upper - bounds[i].lower;
    if (room <= tolerance) continue;
    problem.free.push_back(i);
    start.push_back(point[i]);
    lower.push_back(bounds[i].lower);
    upper.push_back(bounds[i].upper);
    steps.push_back(std::min(first_step, 0.49 * room));  // quadratic models need room on both sides
  }
  if (start.empty()) return problem.best_cost;
  const nlopt_algorithm algorithm = start.size() > 1 ? NLOPT_LN_BOBYQA : NLOPT_LN_COBYLA;
  const std::unique_ptr<nlopt_opt_s, Release> search(
      nlopt_create(algorithm, static_cast<unsigned>(start.size())));
  nlopt_set_lower_bounds(search.get(), lower.data());
  nlopt_set_upper_bounds(search.get(), upper.data());
  nlopt_set_initial_step(search.get(), steps.data());
  nlopt_set_xtol_abs1(search.get(), tolerance);
  nlopt_set_maxeval(search.get(), evaluations);
  nlopt_set_min_objective(search.get(), evaluate, &problem);
  double reached = 0.0;
  nlopt_optimize(search.get(), start.data(), &reached);
  point = problem.best_point;
  return problem.best_cost;
}

}  // namespace tool
