// Every kernel. The kernel test, the benchmarks and scripts/throughput.py read this list.
#ifndef VOREL_TESTS_KERNELS_KERNEL_LIST_H_
#define VOREL_TESTS_KERNELS_KERNEL_LIST_H_

#include "tests/kernels/kernel.h"

DECLARE_KERNEL(box_filter);
DECLARE_KERNEL(box_filter_frame);
DECLARE_KERNEL(bilateral);
DECLARE_KERNEL(bilateral_stored);
DECLARE_KERNEL(bilateral_interior);
DECLARE_KERNEL(deinterleave_planar);
DECLARE_KERNEL(deinterleave_packed);
DECLARE_KERNEL(upsample_y);
DECLARE_KERNEL(upsample_uv420);
DECLARE_KERNEL(upsample_uv422);
DECLARE_KERNEL(restore_planar);
DECLARE_KERNEL(restore_blocks);
DECLARE_KERNEL(restore_planar_apart);
DECLARE_KERNEL(restore_planar_half);
DECLARE_KERNEL(restore_planar_chroma);
DECLARE_KERNEL(restore_packed);
DECLARE_KERNEL(restore_packed_chroma);
DECLARE_KERNEL(sym4_analyse_row);
DECLARE_KERNEL(sym4_analyse_rows);
DECLARE_KERNEL(sym4_synthesise_row);
DECLARE_KERNEL(sym4_synthesise_rows);
DECLARE_KERNEL(haar_level1);
DECLARE_KERNEL(haar_directional);
DECLARE_KERNEL(shrink);
DECLARE_KERNEL(saturate);
DECLARE_KERNEL(pad_pairs);

// clang-format off
inline constexpr Kernel kKernels[] = {
    {.name = "box_filter_col", FORMS(box_filter), .variants = 8, .strip_step = 1, .frame_strips = 64,
     .arm_loops = "box_filter | luma | filters/box_filter.cpp : filter_row<4> :  : 4"},
    {.name = "box_filter_frame", FORMS(box_filter_frame), .variants = 8, .strip_step = 1, .frame_strips = 64},
    {.name = "bilateral_filter", FORMS(bilateral), .variants = 96, .largest_width = 250, .frame_shift = 4, .also = {"wide_weights", 1},
     .arm_loops = "bilateral_filter, one tap | 3 * 49 * luma / 256 | "
                  "filters/bilateral_tile.cpp : filter_tile( : tbl uaddw2 : -32"},
    {.name = "bilateral_filter_opt", FORMS(bilateral_stored), .variants = 14, .largest_width = 93, .frame_shift = 4},
    {.name = "bilateral_filter_center_neon", FORMS(bilateral_interior), .variants = 20, .largest_width = 93, .frame_shift = 4, .also = {"th255", 1}},
    {.name = "deinterleave_yuv420", FORMS(deinterleave_planar), .width_step = 4},
    {.name = "deinterleave_yuv422", FORMS(deinterleave_packed), .width_step = 4},
    {.name = "upsample_y", FORMS(upsample_y), .largest_width = 261, .frame_shift = 4,
     .arm_loops = "upsample_y | luma | convert/upsample.cpp : upsample_plane( :  : 1"},
    {.name = "upsample_uv420", FORMS(upsample_uv420), .largest_width = 261, .frame_shift = 4},
    {.name = "upsample_uv422", FORMS(upsample_uv422), .largest_width = 261, .frame_shift = 4},
    {.name = "restore_yuv420", FORMS(restore_planar), .variants = 18, .strip_step = 2, .width_step = 16, .also = {"wide_totals", 1},
     .arm_loops = "restore, luma | luma | convert/restore_rows.cpp : restore_luma_row( : uqsub tbl : 1 || "
                  "restore, chroma | luma / 2 | convert/restore_rows.cpp : restore_chroma_row( : tbl umull2 -fdiv : 1"},
    {.name = "restore_blocks", FORMS(restore_blocks), .variants = 18, .strip_step = 16, .width_step = 16, .frame_strips = 64},
    {.name = "restore_yuv420_apart", FORMS(restore_planar_apart), .variants = 18, .strip_step = 2, .width_step = 16},
    {.name = "restore_yuv420_mfd_uv", FORMS(restore_planar_half), .variants = 18, .strip_step = 2, .width_step = 16},
    {.name = "restore_uv420", FORMS(restore_planar_chroma), .variants = 18, .strip_step = 2, .width_step = 16},
    {.name = "restore_yuv422", FORMS(restore_packed), .variants = 18, .strip_step = 1, .width_step = 16},
    {.name = "restore_uv422", FORMS(restore_packed_chroma), .variants = 18, .strip_step = 1, .width_step = 16},
    {.name = "sym4_analyse_row", FORMS(sym4_analyse_row), .strip_step = 1, .width_step = 2, .largest_width = 1001, .frame_shift = 1},
    {.name = "sym4_analyse_rows", FORMS(sym4_analyse_rows), .strip_step = 1, .largest_width = 1001, .frame_shift = 1,
     .arm_loops = "Symlet-4 analysis | 2.5 * bordered | wavelet/kernels/sym4_rows.cpp : walk_analysis< :  : 2"},
    {.name = "sym4_synthesise_row", FORMS(sym4_synthesise_row), .strip_step = 1, .largest_width = 1001, .frame_shift = 1},
    {.name = "sym4_synthesise_rows", FORMS(sym4_synthesise_rows), .strip_step = 1, .largest_width = 1001, .frame_shift = 1,
     .arm_loops = "Symlet-4 synthesis | 2.5 * bordered | wavelet/kernels/sym4_rows.cpp : walk_synthesis< :  : 2"},
    {.name = "shrink_row", FORMS(shrink), .variants = 4, .strip_step = 1, .largest_width = 1001, .frame_shift = 2,
     .arm_loops = "shrinkage | 1.375 * bordered | wavelet/kernels/shrinkage_rows.cpp : shrink_row( : fcvtl2 fdiv : 2"},
    {.name = "haar_level1_row", FORMS(haar_level1), .strip_step = 1, .largest_width = 1001, .frame_shift = 2},
    {.name = "haar_directional_row", FORMS(haar_directional), .strip_step = 1, .largest_width = 1001, .frame_shift = 2,
     .arm_loops = "Haar, directional rows | bordered / 4 | "
                  "wavelet/kernels/haar_rows.cpp : split_directional_row<_Float16> :  : 2 || "
                  "Haar, columns | 15 * bordered / 16 | wavelet/kernels/haar_rows.cpp : sum_tapped_rows :  : 2"},
    {.name = "saturate_row", FORMS(saturate), .variants = 9, .strip_step = 1, .largest_width = 1001, .frame_shift = 1,
     .arm_loops = "saturation | luma / 4 | wavelet/kernels/saturation_rows.cpp : saturate_row( : fdiv : 2"},
    {.name = "pad_pairs_row", FORMS(pad_pairs), .strip_step = 1, .largest_width = 1001, .frame_shift = 1},
};
// clang-format on

#endif  // VOREL_TESTS_KERNELS_KERNEL_LIST_H_
