// SPDX-License-Identifier: MIT
#ifndef BENCH_CODEC_H
#define BENCH_CODEC_H

/** Adds the codec's rows to those of the records, whose values it scrambles. */
void registerCodec();

#endif
