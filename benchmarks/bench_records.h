// SPDX-License-Identifier: MIT
#ifndef BENCH_RECORDS_H
#define BENCH_RECORDS_H

// The rows of the table of records, by subject. The codec belongs to them, since it scrambles their values.
void registerInsertions();
void registerUpdates();
void registerSelects();
void registerQueue();
void registerCodec();

#endif
