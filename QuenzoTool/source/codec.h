// SPDX-License-Identifier: MIT
#ifndef CODEC_H
#define CODEC_H

#include <QString>

#include <cstddef>
#include <string>
#include <string_view>

/** The text codec for callers that store bytes. */
namespace Codec {

/**
 * Writes what QuenzoTool::ckEncode() returns, which is ASCII, to the beginning of a buffer.
 *
 * @param bytes made longer where that is needed, and never shorter
 * @return how many bytes the scrambled text has
 */
std::size_t encode(const QString& text, std::string& bytes);

/** The same for a text in UTF-8. */
std::size_t encode(std::string_view utf8, std::string& bytes);

} // namespace Codec

#endif
