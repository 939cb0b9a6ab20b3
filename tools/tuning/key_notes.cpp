// What each key of a tuning file does, in words: hover text of editors, and the ranges that the
// checker holds values to. docs/tuning.md shows it in pictures.
#include <limits>

#include "tools/tuning/known_keys.h"

namespace tool {
namespace {

constexpr double kLeastInt = std::numeric_limits<int32_t>::min();
constexpr double kMostInt = std::numeric_limits<int32_t>::max();
// From 1800 on a threshold times the fixed factor in front of it exceeds half precision.
constexpr double kMostThreshold = 1799;
// Up to 450 grey keeps its value; here it has lost one step.
constexpr double kMostLowThreshold = 640;

constexpr char kGoesWrong[] = "the weighted means overflow: wrong colours and brightness";
constexpr char kNoDetail[] = "all chroma detail of that size is taken away";
constexpr char kBlownUp[] = "detail close to the threshold is blown up: coloured specks";
constexpr char kOneSetting[] = "only the low 5 bits count";

constexpr KeyNote kNotes[] = {
    {"CNRTuningSetfile.Date", "",
     "Version of this tuning, free text below 64 bytes. The log shows it as TUNING_VERSION.", 0, 0,
     "", "", false, false},
    {"enable", "", "Switches the spatial path: 1 on, 0 off.", 0, 1, "it counts as 1",
     "it counts as 1", false, false},
    {"noiseIndex_values", "noise index",
     "Noise index of each level, ascending, at most twelve. Every table has one value for each "
     "level; between two levels values are interpolated, outside the end level's hold.",
     0, kMostInt, "no camera gives such a noise index", "", false, false},
    {"enableNoiseIndex", "noise index",
     "The gate: frames with a lower noise index are left as they are. When the key is missing, the "
     "built-in 40960 lets hardly any frame through.",
     0, kMostInt, "no camera gives such a noise index", "", false, false},
    {"bilateralfiltering_tuning.span_row", "samples of the 1/16 plane",
     "How far the bilateral filter reaches up and down. One sample stands for 16 x 16 pixels; the "
     "time grows with the square. Useful: 1 to 5.",
     0, 15, "negative spans give black planes", "the filter takes very long", false, false},
    {"bilateralfiltering_tuning.span_col", "samples of the 1/16 plane",
     "How far the bilateral filter reaches to the left and right. Useful: 1 to 5.", 0, 15,
     "negative spans give black planes", "the filter takes very long", false, false},
    {"bilateralfiltering_tuning.val_delta_th", "grey levels",
     "Differences in value from here on weigh like this one. The weight polynomial must fit it: "
     "the built-in one goes up to 7.",
     0, 15, "the weights are not what the polynomial means",
     "from 16 on the filtered planes become 0 and the spatial path does nothing", false, false},
    {"bilateralfiltering_tuning.val_weight_coef", "",
     "c0 to c4 of the weight by difference in value x: (c0 + c1 x + c2 x^2 + c3 x^3 + c4 x^4) "
     "shifted right by val_weight_denom_shift. Weights must lie from 0 to 255.",
     kLeastInt, kMostInt, "", "", false, false},
    {"bilateralfiltering_tuning.val_weight_denom_shift", "bits",
     "Right shift of the weight polynomial.", 0, 31, kOneSetting, kOneSetting, false, false},
    {"interleaving_tuning.d_Y_upper_thresh_table", "grey levels",
     "Luma changes only where the rebuilt value differs by less than this and by more than "
     "d_Y_lower_thresh. 2 above 1 changes nothing. 0 switches the whole spatial path off at this "
     "level, chroma too.",
     0, 128, kGoesWrong, kGoesWrong, true, false},
    {"interleaving_tuning.d_Y_lower_thresh_table", "grey levels",
     "Luma differences up to this keep the frame's value.", 0, 255, "it counts as 0",
     "luma never changes", false, false},
    {"interleaving_tuning.d_UV_thresh_table", "1/64 of the saturation",
     "How far chroma may be from its smooth form and still be drawn to it. Useful: 4 to 32 before "
     "the wavelet path, 16 to 128 alone. 0 switches the whole spatial path off at this level, luma "
     "too.",
     0, 128, kGoesWrong, kGoesWrong, true, true},
    {"interleaving_tuning.cs_upper_thresh_table", "grey levels, |U-128| + |V-128|",
     "Saturation is taken as at most this: higher lets saturated colours be drawn further. Useful: "
     "36 to 192.",
     1, 256, "every pixel gets the smooth chroma", "no pixel is that saturated", true, false},
    {"interleaving_tuning.cs_lower_thresh_table", "grey levels, |U-128| + |V-128|",
     "Saturation is taken as at least this: higher lets grey and pale colours be drawn further. "
     "About three quarters of cs_upper_thresh.",
     0, 256, "grey pixels get the smooth chroma whatever it is", "no pixel is that saturated",
     false, false},
    {"MFD_UV_tuning.enable", "", "Switches the wavelet path: 1 on, 0 off.", 0, 1, "it counts as 1",
     "it counts as 1", false, false},
    {"MFD_UV_tuning.radialModeTable", "",
     "Stronger towards the corners, for noise that lens shading correction amplifies. 0.0 is off; "
     "r above 0 gives up to 4 + r times the thresholds in the corners, below 0 up to 3 - r. Use it "
     "at every level or at none.",
     -4, 4, "the corners lose their colour", "the corners lose their colour", false, false},
    {"MFD_UV_tuning.denoiseThrChroma0Table", "noise power",
     "Strength against coloured blotches from about 16 pixels on. Twice the noise amplitude needs "
     "four times the threshold. Also acts on the mean colour: not above 450.",
     0, kMostLowThreshold, "it counts as its magnitude",
     "grey and every other colour shift towards green; from 1800 on the picture is plain green",
     true, true},
    {"MFD_UV_tuning.denoiseThrChroma1Table", "noise power",
     "Strength against coloured grain of about 8 pixels, horizontal and vertical. Useful: to 1280.",
     0, kMostThreshold, kBlownUp, kNoDetail, true, true},
    {"MFD_UV_tuning.denoiseThrChroma2Table", "noise power",
     "Strength against coloured grain of about 8 pixels, diagonal. Useful: to 1280.", 0,
     kMostThreshold, kBlownUp, kNoDetail, true, true},
    {"MFD_UV_tuning.denoiseThrChroma3Table", "noise power",
     "Strength against coloured pixels of about 4 pixels, horizontal and vertical. Useful: to "
     "1280.",
     0, kMostThreshold, kBlownUp, kNoDetail, true, true},
    {"MFD_UV_tuning.denoiseThrChroma4Table", "noise power",
     "Strength against coloured pixels of about 4 pixels, diagonal. Useful: to 1280.", 0,
     kMostThreshold, kBlownUp, kNoDetail, true, true},
    {"MFD_UV_tuning.CSatParam1Table", "percent",
     "Change of saturation of strong colours, above CSatThr1. 0.0 changes nothing, -100.0 makes "
     "grey.",
     -100, 100, "colours turn into their complements", "strong colours clip", true, false},
    {"MFD_UV_tuning.CSatParam2Table", "percent",
     "Change of saturation of weak colours, below CSatThr2. -10.0 to -40.0 at the highest levels "
     "hides what is left of the noise.",
     -100, 100, "colours turn into their complements", "the noise of grey parts grows", true,
     false},
    {"MFD_UV_tuning.CSatThr1Table", "grey levels, the larger of |U-128| and |V-128|",
     "From here on CSatParam1 holds. Keep it above CSatThr2.", 0, 128, "it counts as 0",
     "no colour is that strong", false, false},
    {"MFD_UV_tuning.CSatThr2Table", "grey levels, the larger of |U-128| and |V-128|",
     "Up to here CSatParam2 holds; a ramp leads to CSatThr1.", 0, 128, "it counts as 0",
     "no colour is that strong", false, false},
    {kChromaNoise, "estimate of vorel measure",
     "The chroma noise that frames of each level show, ascending, one value for each level. The "
     "library ignores it; 'vorel denoise --noise-index auto' finds a frame's noise index by it.",
     0.01, 128, "the table is ignored", "no frame has such a noise", false, true},
};

}  // namespace

std::span<const KeyNote> key_notes() { return kNotes; }

}  // namespace tool
