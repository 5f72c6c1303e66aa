// SPDX-License-Identifier: MIT
#ifndef CODEC_H
#define CODEC_H

#include <QString>

#include <cstddef>
#include <string>

/** The text codec for callers that store bytes. */
namespace Codec {

/**
 * Writes what QuenzoTool::ckEncode() returns, which is ASCII, to the beginning of a buffer.
 *
 * @param bytes made longer where that is needed, and never shorter
 * @return how many bytes the scrambled text has
 */
std::size_t encode(const QString& text, std::string& bytes);

} // namespace Codec

#endif
