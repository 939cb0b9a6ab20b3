#include "filters/bilateral_weights.h"

#include "filters/range_weights.h"
#include "platform/log.h"
#include "platform/numeric.h"

void build_stored_weights(bilateralfiltering_tuning* tuning) {
  if (tuning->val_delta_th >= 16) {
    VOREL_LOGI("update_bilateral_filter_tuning: optimized version isn't supported. %d",
               tuning->val_delta_th);
    return;
  }
  for (int32_t difference = 0; difference < 16; ++difference) {
    const int32_t weight = polynomial_weight(*tuning, difference);
    if (weight < 0 || weight > 255) {
      VOREL_LOGE("update_bilateral_filter_tuning: val_weight[%d] is unsupported value %d",
                 difference, weight);
    }
    tuning->val_weight[difference] = clamp_u8(weight);
  }
}
