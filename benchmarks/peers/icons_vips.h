// SPDX-License-Identifier: MIT
#ifndef ICONS_VIPS_H
#define ICONS_VIPS_H

#include <string>
#include <vector>

/** One channel as the peers see it. */
struct PeerChannel {
    std::string mark;
    int left;
    int top;
    std::string folder; // exists
};

/** One file of a set; a side of 0 leaves the icon in its own size. */
struct PeerFile {
    int side;
    std::string name;
};

/** How the rows are prepared for deflation. */
enum VipsFilters { Unfiltered, AdaptivelyFiltered };

/** Writes icon sets with libvips, a thread a core; false after an error. */
bool writeIconsWithVips(const std::string& master, const std::vector<PeerChannel>& channels,
                        const std::vector<PeerFile>& files, VipsFilters filters);

#endif
