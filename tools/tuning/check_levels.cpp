#include "tools/tuning/check_levels.h"

#include <algorithm>
#include <functional>

#include "filters/range_weights.h"

namespace tool {
namespace {

const KnownKey& key(const char* path) { return *find_key(path); }

constexpr char kLevels[] = "noiseIndex_values";
constexpr char kGate[] = "enableNoiseIndex";
constexpr char kWeights[] = "bilateralfiltering_tuning.val_weight_coef";
constexpr char kWeightReach[] = "bilateralfiltering_tuning.val_delta_th";
constexpr char kWeightShift[] = "bilateralfiltering_tuning.val_weight_denom_shift";
constexpr char kLowThreshold[] = "MFD_UV_tuning.denoiseThrChroma0Table";
constexpr char kRadial[] = "MFD_UV_tuning.radialModeTable";
constexpr char kOffHere[] = "the whole spatial path is off at this level";

class LevelCheck {
 public:
  LevelCheck(const TuningView& view, FindingList& found)
      : view_(view), found_(found), levels_(view.levels()) {}

  void check_all() {
    check_order();
    check_gate();
    check_rising();
    check_pair("interleaving_tuning.cs_lower_thresh_table",
               "interleaving_tuning.cs_upper_thresh_table",
               "cs_upper_thresh wins: saturation no longer counts");
    check_pair("interleaving_tuning.d_Y_lower_thresh_table",
               "interleaving_tuning.d_Y_upper_thresh_table", "luma never changes");
    check_pair("MFD_UV_tuning.CSatThr2Table", "MFD_UV_tuning.CSatThr1Table",
               "there is no ramp: colours break at CSatThr1");
    check_switched_off();
    check_radial();
    check_weights();
  }

 private:
  [[nodiscard]] double number(const char* path, size_t index) const {
    return view_.number(key(path), index);
  }
  [[nodiscard]] std::string shown(const char* path, size_t index) const {
    return number_text(key(path), number(path, index));
  }

  // One warning for all levels at which something is wrong with a key that the file has, at the
  // first of them.
  void warn_at_levels(const char* path, const std::function<bool(size_t)>& is_wrong,
                      const std::function<std::string(size_t)>& what, const char* consequence) {
    const KnownKey& known = key(path);
    if (!view_.is_sound(known)) return;
    size_t first = levels_;
    size_t count = 0;
    for (size_t i = 0; i < levels_; ++i) {
      if (view_.has(known) && is_wrong(i) && count++ == 0) first = i;
    }
    if (count == 0) return;
    const std::string more = count > 1 ? " (and at " + std::to_string(count - 1) + " more)" : "";
    found_.warning(view_.begin(known, first), value_path(known, first), what(first) + more,
                   consequence);
  }

  void check_order() {
    if (!view_.is_sound(key(kLevels))) return;
    const size_t length =
        std::min<size_t>(json_array_size(view_.value(key(kLevels)).json), kNoiseLevels);
    for (size_t i = 1; i < length; ++i) {
      if (number(kLevels, i) > number(kLevels, i - 1)) continue;
      found_.error(view_.begin(key(kLevels), i), value_path(key(kLevels), i),
                   shown(kLevels, i) + " is not above " + shown(kLevels, i - 1) + " before it",
                   "levels are searched by bisection: frames may get another level's values");
    }
  }

  void check_gate() {
    const size_t begin = view_.object().begin();
    if (!view_.has(key(kGate))) {
      found_.warning(begin, kGate, "is missing",
                     "the built-in gate " + shown(kGate, 0) + " lets hardly any frame through");
    }
    const auto& keys = known_keys();
    const bool has_table = std::any_of(keys.begin(), keys.end(), [this](const KnownKey& known) {
      return known.per_level && view_.has(known);
    });
    if (!view_.has(key(kLevels)) && has_table) {
      found_.warning(begin, kLevels, "is missing",
                     "the tables belong to the built-in levels 100, 107, 160, ... 40960");
    }
    if (!view_.has(key(kGate)) || !view_.is_sound(key(kGate)) || !view_.is_sound(key(kLevels))) {
      return;
    }
    const size_t gate_begin = view_.begin(key(kGate), 0);
    if (number(kGate, 0) > number(kLevels, levels_ - 1)) {
      found_.warning(gate_begin, kGate, shown(kGate, 0) + " is above every level",
                     "frames of the levels are left as they are, the others get the last level's "
                     "values");
      return;
    }
    std::vector<double> all(levels_);
    for (size_t i = 0; i < levels_; ++i) all[i] = number(kLevels, i);
    std::string list;
    for (const size_t level : unreachable_levels(all, number(kGate, 0))) {
      list += (list.empty() ? "" : ", ") + shown(kLevels, level);
    }
    if (list.empty()) return;
    found_.warning(gate_begin, kGate, shown(kGate, 0) + " leaves no frame for levels " + list,
                   "their values are never used");
  }

  void check_rising() {
    for (const KnownKey& known : known_keys()) {
      if (!known.note.rises || !view_.is_sound(known)) continue;
      const size_t length = std::min(json_array_size(view_.value(known).json), levels_);
      for (size_t i = 1; i < length; ++i) {
        const double before = view_.number(known, i - 1);
        const double here = view_.number(known, i);
        const bool must_rise = known.for_command;
        if (must_rise ? here > before : here >= before) continue;
        found_.warning(view_.begin(known, i), value_path(known, i),
                       must_rise ? number_text(known, here) + " is not above " +
                                       number_text(known, before) + " before it"
                                 : "falls from " + number_text(known, before) + " to " +
                                       number_text(known, here),
                       must_rise ? "the table is ignored"
                                 : "noisier frames are denoised less than quieter ones");
        break;
      }
    }
  }

  // The first must not be above the second.
  void check_pair(const char* lower, const char* upper, const char* consequence) {
    if (!view_.is_sound(key(lower)) || !view_.is_sound(key(upper))) return;
    const std::string name = key(upper).key.name;
    const char* at = view_.has(key(lower)) ? lower : upper;
    warn_at_levels(
        at,
        [&](size_t i) {
          const bool told = number(upper, i) == 0 && !key(upper).is_real();  // 0 switches off
          return !told && number(lower, i) > number(upper, i);
        },
        [&](size_t i) {
          return at == lower ? shown(lower, i) + " is above " + shown(upper, i) + " of " + name
                             : shown(upper, i) + " is below " + shown(lower, i) + " of " +
                                   std::string(key(lower).key.name);
        },
        consequence);
  }

  void check_switched_off() {
    for (const char* path :
         {"interleaving_tuning.d_Y_upper_thresh_table", "interleaving_tuning.d_UV_thresh_table"}) {
      warn_at_levels(
          path, [&](size_t i) { return number(path, i) == 0; }, [](size_t) { return "is 0"; },
          kOffHere);
    }
    if (number("enable", 0) == 0 && number("MFD_UV_tuning.enable", 0) == 0) {
      found_.warning(view_.begin(key("enable"), 0), "enable", "is 0, and that of MFD_UV_tuning too",
                     "no frame is changed");
    }
  }

  void check_radial() {
    if (!view_.is_sound(key(kRadial))) return;
    const auto is_off = [this](size_t i) { return number(kRadial, i) == 0; };
    size_t off = 0;
    for (size_t i = 0; i < levels_; ++i) off += is_off(i) ? 1 : 0;
    if (off == 0 || off == levels_) {
      check_radial_strength();
      return;
    }
    warn_at_levels(
        kRadial, is_off, [](size_t) { return "is 0.0 beside levels that are not"; },
        "between the two the corners' factor jumps from 1 to 3 or 4");
    check_radial_strength();
  }

  // The factor in the corners acts on the mean colour like the threshold itself.
  void check_radial_strength() {
    const auto factor = [this](size_t i) {
      const double radial = number(kRadial, i);
      return radial > 0 ? 4 + radial : radial < 0 ? 3 - radial : 1;
    };
    const double most = key(kLowThreshold).note.most;
    warn_at_levels(
        kLowThreshold,
        [&](size_t i) {
          const double threshold = number(kLowThreshold, i);
          return number(kRadial, i) != 0 && threshold <= most && threshold * factor(i) > most;
        },
        [&](size_t i) {
          return shown(kLowThreshold, i) + " times the radial mode's " + real_text(factor(i)) +
                 " in the corners is above " + real_text(most);
        },
        "grey shifts towards green in the corners");
  }

  void check_weights() {
    for (const char* path : {kWeights, kWeightReach, kWeightShift}) {
      if (!view_.is_sound(key(path))) return;
    }
    bilateralfiltering_tuning tuning{};
    tuning.val_delta_th = static_cast<int32_t>(number(kWeightReach, 0));
    tuning.val_weight_denom_shift = static_cast<int32_t>(number(kWeightShift, 0));
    bool is_built_in = true;
    for (size_t i = 0; i < 5; ++i) {
      tuning.val_weight_coef[i] = static_cast<int32_t>(number(kWeights, i));
      is_built_in = is_built_in && number(kWeights, i) ==
                                       default_value(key(kWeights).key, static_cast<int32_t>(i));
    }
    const double fits = default_value(key(kWeightReach).key, 0);
    const bool too_far = is_built_in && tuning.val_delta_th > fits;
    if (tuning.val_delta_th > key(kWeightReach).note.most) return;  // no weights at all
    for (int32_t i = 0; i <= tuning.val_delta_th; ++i) {
      const int32_t weight = polynomial_weight(tuning, i);
      const bool is_last = i == tuning.val_delta_th;
      const bool all_nothing = i == 0 && weight == 0;  // smooth planes come out black
      if (weight >= 0 && weight <= 255 && !all_nothing && !(too_far && is_last)) continue;
      const char* at = view_.has(key(kWeightReach)) ? kWeightReach : kWeights;
      found_.warning(view_.begin(key(at), 0), key(at).path(),
                     "differences of " + std::to_string(i) + " weigh " + std::to_string(weight) +
                         (too_far ? " with the built-in polynomial, which is made for " +
                                        std::to_string(static_cast<int32_t>(fits))
                          : all_nothing ? ""
                                        : ", outside 0 to 255"),
                     "the bilateral filter takes wrong means");
      return;
    }
  }

  const TuningView& view_;
  FindingList& found_;
  size_t levels_;
};

}  // namespace

void check_levels(const TuningView& view, FindingList& found) {
  LevelCheck(view, found).check_all();
}

std::vector<size_t> unreachable_levels(const std::vector<double>& levels, double gate) {
  std::vector<size_t> unreachable;
  for (size_t i = 0; i + 1 < levels.size(); ++i) {
    // A frame takes from a level up to the next one.
    if (levels[i + 1] <= gate) unreachable.push_back(i);
  }
  return unreachable;
}

}  // namespace tool
