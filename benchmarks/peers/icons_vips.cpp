// SPDX-License-Identifier: MIT
#include "icons_vips.h"

#include <vips/vips.h>

#include <atomic>
#include <memory>
#include <thread>

namespace {

struct Unref {
    void operator()(VipsImage* image) const { g_object_unref(image); }
};
using Image = std::unique_ptr<VipsImage, Unref>;

// The master with the mark, drawn once and kept in memory for all sizes.
Image markedIcon(VipsImage* master, const PeerChannel& channel)
{
    const Image mark(vips_image_new_from_file(channel.mark.c_str(), nullptr));
    VipsImage* result = nullptr;
    if (mark == nullptr
        || vips_composite2(master, mark.get(), &result, VIPS_BLEND_MODE_OVER, "x", channel.left, "y",
                           channel.top, nullptr)
            != 0)
        return {};
    const Image composite(result);
    if (vips_extract_band(composite.get(), &result, 0, "n", 3, nullptr) != 0)
        return {};
    const Image opaque(result);
    if (vips_cast_uchar(opaque.get(), &result, nullptr) != 0)
        return {};
    const Image whole(result);
    return Image(vips_image_copy_memory(whole.get()));
}

bool writeFile(VipsImage* icon, int side, const std::string& path, VipsFilters filters)
{
    const VipsForeignPngFilter filter =
        filters == Unfiltered ? VIPS_FOREIGN_PNG_FILTER_NONE : VIPS_FOREIGN_PNG_FILTER_ALL;
    if (side == 0)
        return vips_pngsave(icon, path.c_str(), "filter", filter, nullptr) == 0;
    VipsImage* result = nullptr;
    const double scale = static_cast<double>(side) / vips_image_get_width(icon);
    if (vips_resize(icon, &result, scale, "kernel", VIPS_KERNEL_LINEAR, nullptr) != 0)
        return false;
    const Image scaled(result);
    return vips_pngsave(scaled.get(), path.c_str(), "filter", filter, nullptr) == 0;
}

bool writeSet(VipsImage* master, const PeerChannel& channel, const std::vector<PeerFile>& files,
              VipsFilters filters)
{
    const Image icon = markedIcon(master, channel);
    if (icon == nullptr)
        return false;
    for (const PeerFile& file : files) {
        if (!writeFile(icon.get(), file.side, channel.folder + '/' + file.name, filters))
            return false;
    }
    return true;
}

} // namespace

bool writeIconsWithVips(const std::string& master, const std::vector<PeerChannel>& channels,
                        const std::vector<PeerFile>& files, VipsFilters filters)
{
    static const bool started = VIPS_INIT("bench_icons") == 0;
    if (!started)
        return false;
    // Whole channels share the cores better than the parts of small pictures; nothing is read twice.
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    const Image file(vips_image_new_from_file(master.c_str(), nullptr));
    const Image loaded(file == nullptr ? nullptr : vips_image_copy_memory(file.get()));
    if (loaded == nullptr)
        return false;
    std::atomic<std::size_t> next{0};
    std::atomic<bool> complete{true};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < std::thread::hardware_concurrency(); ++i) {
        threads.emplace_back([&] {
            for (std::size_t at = next++; at < channels.size(); at = next++) {
                if (!writeSet(loaded.get(), channels[at], files, filters))
                    complete = false;
            }
            vips_thread_shutdown();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    return complete;
}
