// Rows of the Symlet-4 transform.
//
// Every product and every sum rounds to half precision, in the order written in the source file.
// Input and output rows must not overlap. Nothing is extended: outputs whose taps leave the row are
// not written.
#ifndef VOREL_WAVELET_KERNELS_SYM4_ROWS_H_
#define VOREL_WAVELET_KERNELS_SYM4_ROWS_H_

#include <cstdint>

inline constexpr int kSym4AnalysisRows = 8;
inline constexpr int kSym4SynthesisRows = 5;

// Analysis of `size` samples writes the outputs [kSym4First, sym4_analysis_end(size)): output k
// reads the samples 2k - 4 .. 2k + 3. Below a size of 8 there is none.
inline constexpr int kSym4First = 2;
inline int sym4_analysis_end(int size) { return (size - 4) / 2 + 1; }

// Synthesis of `size` low and high samples reads k - 2 .. k + 2 for the outputs 2k - 1 and 2k,
// k = kSym4First .. sym4_synthesis_end(size) - 1.
inline int sym4_synthesis_end(int size) { return size - 2; }

// In an analysis `high` may be null: the low band only.

// Output row k of a vertical analysis: rows[i] is the source row 2k - 4 + i.
void sym4_analyse_rows(const _Float16* const (&rows)[kSym4AnalysisRows], _Float16* low,
                       _Float16* high, int width);

// Horizontal analysis of `width` samples.
void sym4_analyse_row(const _Float16* src, _Float16* low, _Float16* high, int width);
void sym4_analyse_row(const uint8_t* src, _Float16* low, _Float16* high, int width);

// Output rows 2k - 1 (`odd`) and 2k (`even`) of a vertical synthesis: low[i] and high[i] are the
// rows k - 2 + i.
void sym4_synthesise_rows(const _Float16* const (&low)[kSym4SynthesisRows],
                          const _Float16* const (&high)[kSym4SynthesisRows], _Float16* odd,
                          _Float16* even, int width);

// Horizontal synthesis of the outputs 2k - 1 and 2k for k in [k_first, k_end), and of all outputs
// of `width` low and `width` high samples.
void sym4_synthesise_pairs(const _Float16* low, const _Float16* high, _Float16* out, int k_first,
                           int k_end);
inline void sym4_synthesise_row(const _Float16* low, const _Float16* high, _Float16* out,
                                int width) {
  sym4_synthesise_pairs(low, high, out, kSym4First, sym4_synthesis_end(width));
}

#endif  // VOREL_WAVELET_KERNELS_SYM4_ROWS_H_
