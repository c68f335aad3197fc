// SPDX-License-Identifier: MIT
// The file extensions that make a name a video file's: common and rare formats, without duplicates.
#include "common/media_extensions.h"

#include <iterator>

namespace {

constexpr const char* extensions[] = {
    ".264",   ".3g2",  ".3gp",  ".3gp2",  ".3gpp", ".3gpp2", ".amv",     ".arf",    ".asf",        ".asx",  ".avc",
    ".avchd", ".avi",  ".avs",  ".axv",   ".bik",  ".bk2",   ".camproj", ".camrec", ".cine",       ".clpi", ".d2v",
    ".dav",   ".dce",  ".dif",  ".divx",  ".dpg",  ".dv",    ".dv-avi",  ".dv4",    ".dvdmedia",   ".dvr",  ".dvr-ms",
    ".dvx",   ".evo",  ".f4p",  ".f4v",   ".flc",  ".fli",   ".flv",     ".flx",    ".ftc",        ".gifv", ".gvi",
    ".gxf",   ".h261", ".h263", ".h264",  ".h265", ".hdmov", ".hevc",    ".ifo",    ".imovieproj", ".ismv", ".ivf",
    ".ivr",   ".jmv",  ".k3g",  ".kmv",   ".lrv",  ".lsf",   ".m1pg",    ".m1v",    ".m21",        ".m2p",  ".m2t",
    ".m2ts",  ".m2v",  ".m4e",  ".m4u",   ".m4v",  ".mj2",   ".mjp",     ".mjpeg",  ".mjpg",       ".mk3d", ".mkv",
    ".mod",   ".moi",  ".mov",  ".movie", ".mp2v", ".mp4",   ".mp4v",    ".mpe",    ".mpeg",       ".mpg",  ".mpl",
    ".mpls",  ".mpv",  ".mpv2", ".mqv",   ".mts",  ".mtv",   ".mxf",     ".nsv",    ".nut",        ".nuv",  ".ogm",
    ".ogv",   ".ogx",  ".pva",  ".qt",    ".r3d",  ".rec",   ".rm",      ".rmvb",   ".roq",        ".rv",   ".sfd",
    ".smk",   ".smv",  ".svi",  ".swf",   ".tivo", ".tod",   ".tp",      ".trp",    ".ts",         ".usm",  ".vid",
    ".vivo",  ".vob",  ".vp6",  ".vp8",   ".vro",  ".webm",  ".wm",      ".wmd",    ".wmv",        ".wmx",  ".wtv",
    ".wvx",   ".xesc", ".xvid", ".y4m"};

static_assert(std::size(extensions) == video_extension_count);

} // namespace

media_extension_list video_extensions() {
    return {std::begin(extensions), std::end(extensions)};
}
