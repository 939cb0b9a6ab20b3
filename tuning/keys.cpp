#include "tuning/keys.h"

namespace {

#define FIELD(name) offsetof(cnr_tuning, name)

constexpr char kBilateral[] = "bilateralfiltering_tuning";
constexpr char kInterleave[] = "interleaving_tuning";
constexpr char kWavelet[] = "MFD_UV_tuning";
constexpr size_t kNone = kNoField;

// A key with one value.
constexpr tuning_key scalar(const char* section, const char* name, key_type type, double value,
                            size_t field, size_t second_field = kNone) {
  return {section, name, type, 1, {1, {value}}, field, second_field, kNone, kNone};
}

// A table with one value per noise level.
constexpr tuning_key levels(const char* section, const char* name, key_type type, double value,
                            size_t field, size_t current) {
  return {section, name, type, kNoiseLevels, {1, {value}}, field, kNone, current, kNone};
}

constexpr tuning_key kKeys[] = {
    scalar(kVersionSection, kVersionName, key_type::kText, 0, kNone),
    scalar(nullptr, "enable", key_type::kFlag, 1, FIELD(enable)),
    {nullptr,
     "noiseIndex_values",
     key_type::kInt,
     kNoiseLevels,
     {kNoiseLevels, {100, 107, 160, 320, 640, 1280, 2560, 5120, 7680, 10240, 20480, 40960}},
     FIELD(NILevel),
     kNone,
     kNone,
     FIELD(NILevelNum)},
    scalar(nullptr, "enableNoiseIndex", key_type::kInt, 40960, FIELD(enableNoiseIndex)),

    scalar(kBilateral, "span_row", key_type::kInt, 3, FIELD(bilateralfiltering_tuning.span_Y_row),
           FIELD(bilateralfiltering_tuning.span_UV_row)),
    scalar(kBilateral, "span_col", key_type::kInt, 3, FIELD(bilateralfiltering_tuning.span_Y_col),
           FIELD(bilateralfiltering_tuning.span_UV_col)),
    scalar(kBilateral, "val_delta_th", key_type::kInt, 7,
           FIELD(bilateralfiltering_tuning.val_delta_th)),
    {kBilateral,
     "val_weight_coef",
     key_type::kInt,
     5,
     {5, {65489, 1375, -5503, 835, -37}},
     FIELD(bilateralfiltering_tuning.val_weight_coef),
     kNone,
     kNone,
     kNone},
    scalar(kBilateral, "val_weight_denom_shift", key_type::kInt, 10,
           FIELD(bilateralfiltering_tuning.val_weight_denom_shift)),

    levels(kInterleave, "d_Y_upper_thresh_table", key_type::kInt, 4,
           FIELD(interleaving_tuning.d_Y_upper_thresh_table),
           FIELD(interleaving_tuning.d_Y_upper_thresh)),
    levels(kInterleave, "d_Y_lower_thresh_table", key_type::kInt, 1,
           FIELD(interleaving_tuning.d_Y_lower_thresh_table),
           FIELD(interleaving_tuning.d_Y_lower_thresh)),
    levels(kInterleave, "d_UV_thresh_table", key_type::kInt, 16,
           FIELD(interleaving_tuning.d_UV_thresh_table), FIELD(interleaving_tuning.d_UV_thresh)),
    levels(kInterleave, "cs_upper_thresh_table", key_type::kInt, 48,
           FIELD(interleaving_tuning.cs_upper_thresh_table),
           FIELD(interleaving_tuning.cs_upper_thresh)),
    levels(kInterleave, "cs_lower_thresh_table", key_type::kInt, 36,
           FIELD(interleaving_tuning.cs_lower_thresh_table),
           FIELD(interleaving_tuning.cs_lower_thresh)),

    scalar(kWavelet, "enable", key_type::kFlag, 1, FIELD(mfd_uv_tuning.enable)),
    levels(kWavelet, "radialModeTable", key_type::kReal, 0, FIELD(mfd_uv_tuning.radialModeTable),
           FIELD(mfd_uv_tuning.radialMode)),
    levels(kWavelet, "denoiseThrChroma0Table", key_type::kReal, 100,
           FIELD(mfd_uv_tuning.denoiseThrChroma0Table), FIELD(mfd_uv_tuning.denoiseThrChroma[0])),
    levels(kWavelet, "denoiseThrChroma1Table", key_type::kReal, 90,
           FIELD(mfd_uv_tuning.denoiseThrChroma1Table), FIELD(mfd_uv_tuning.denoiseThrChroma[1])),
    levels(kWavelet, "denoiseThrChroma2Table", key_type::kReal, 70,
           FIELD(mfd_uv_tuning.denoiseThrChroma2Table), FIELD(mfd_uv_tuning.denoiseThrChroma[2])),
    levels(kWavelet, "denoiseThrChroma3Table", key_type::kReal, 70,
           FIELD(mfd_uv_tuning.denoiseThrChroma3Table), FIELD(mfd_uv_tuning.denoiseThrChroma[3])),
    levels(kWavelet, "denoiseThrChroma4Table", key_type::kReal, 60,
           FIELD(mfd_uv_tuning.denoiseThrChroma4Table), FIELD(mfd_uv_tuning.denoiseThrChroma[4])),
    levels(kWavelet, "CSatParam1Table", key_type::kReal, 0, FIELD(mfd_uv_tuning.CSatParam1Table),
           FIELD(mfd_uv_tuning.CSatParam1)),
    levels(kWavelet, "CSatParam2Table", key_type::kReal, 0, FIELD(mfd_uv_tuning.CSatParam2Table),
           FIELD(mfd_uv_tuning.CSatParam2)),
    levels(kWavelet, "CSatThr1Table", key_type::kReal, 65, FIELD(mfd_uv_tuning.CSatThr1Table),
           FIELD(mfd_uv_tuning.CSatThr1)),
    levels(kWavelet, "CSatThr2Table", key_type::kReal, 40, FIELD(mfd_uv_tuning.CSatThr2Table),
           FIELD(mfd_uv_tuning.CSatThr2)),
};

#undef FIELD

}  // namespace

std::span<const tuning_key> tuning_keys() { return kKeys; }
