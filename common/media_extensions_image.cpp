// SPDX-License-Identifier: MIT
// The file extensions that make a name an image file's: common and rare formats, without duplicates.
#include "common/media_extensions.h"

#include <iterator>

namespace {

constexpr const char* extensions[] = {
    ".001", ".2bp", ".411", ".73i", ".8pbs", ".8xi", ".abm", ".accountpicture-ms", ".acorn", ".acr", ".afdesign",
    ".afphoto", ".afx", ".agif", ".agp", ".ai", ".aic", ".apd", ".apm", ".apng", ".aps", ".apx", ".art", ".artwork",
    ".ase", ".aseprite", ".astc", ".att", ".avatar", ".avif", ".avifs", ".awd", ".b16", ".bif", ".blkrt", ".blp",
    ".blz", ".bm2", ".bmc", ".bmf", ".bmp", ".bmq", ".bmx", ".bmz", ".bob", ".box", ".bpg", ".brk", ".bsave", ".btf",
    ".bw", ".c4", ".cal", ".cals", ".cdc", ".cdg", ".cdr", ".cdt", ".ce", ".cel", ".cgm", ".chara", ".cimg", ".cin",
    ".clip", ".cmx", ".cmyk", ".cpbitmap", ".cpc", ".cpd", ".cpg", ".cps", ".cpt", ".cpx", ".ct", ".cur", ".cut",
    ".cv5", ".cvs", ".dc2", ".dcm", ".dcs", ".dcx", ".dds", ".ddt", ".dgn", ".dgt", ".dia", ".dib", ".dicom", ".djv",
    ".djvu", ".dm3", ".dm4", ".dpp", ".dpx", ".drg", ".drw", ".dtw", ".dwf", ".dwg", ".dxf", ".ecw", ".egc", ".emf",
    ".emz", ".eps", ".eps2", ".eps3", ".epsf", ".epsi", ".ers", ".exif", ".exr", ".ezdraw", ".farbfeld", ".fax", ".fbm",
    ".ff", ".fh10", ".fh11", ".fh3", ".fh4", ".fh5", ".fh6", ".fh7", ".fh8", ".fh9", ".fhd", ".fig", ".fit", ".fits",
    ".fl32", ".flif", ".fpg", ".fppx", ".fpx", ".fsh", ".fts", ".fxg", ".g3", ".g4", ".gbr", ".gcdp", ".gdraw", ".gem",
    ".gfb", ".gfw", ".ggr", ".gif", ".gih", ".gim", ".gks", ".gmbck", ".gmspr", ".gp4", ".gpd", ".gray", ".graya",
    ".gtif", ".gvdesign", ".hdp", ".hdr", ".hdrp", ".hdz", ".heic", ".heics", ".heif", ".heifs", ".hif", ".hips",
    ".hpg", ".hpgl", ".hpi", ".hpl", ".hrf", ".hrz", ".hvif", ".ic1", ".ic2", ".ic3", ".ica", ".icb", ".icn", ".icns",
    ".ico", ".icon", ".icpr", ".iff", ".ilbm", ".ima", ".image", ".img", ".imq", ".info", ".ink", ".ipick", ".ipx",
    ".itc2", ".itg", ".ithmb", ".iw4", ".iw44", ".iwi", ".j2c", ".j2k", ".jbf", ".jbg", ".jbig", ".jbig2", ".jbmp",
    ".jfif", ".jia", ".jif", ".jiff", ".jls", ".jng", ".jp2", ".jpc", ".jpd", ".jpe", ".jpeg", ".jpf", ".jpg", ".jpg2",
    ".jph", ".jpm", ".jps", ".jpx", ".jwl", ".jxl", ".jxr", ".jxs", ".kdk", ".kic", ".koa", ".kodak", ".kpg", ".kra",
    ".ktx", ".ktx2", ".lbm", ".lif", ".ljp", ".lrpreview", ".lsm", ".lsr", ".lss", ".mac", ".map", ".max", ".mbm",
    ".mdp", ".met", ".mgr", ".mgx", ".mh", ".mic", ".mif", ".miff", ".mig", ".mix", ".mng", ".mono", ".mpf", ".mpnt",
    ".mpo", ".mpr", ".mrb", ".mrc", ".mrf", ".mrxs", ".msk", ".msp", ".mtv", ".mvg", ".ndpi", ".neo", ".nif", ".nii",
    ".nitf", ".nrrd", ".nsr", ".ntf", ".oc3", ".oc4", ".oc5", ".odg", ".ora", ".ota", ".otb", ".otg", ".oti", ".pac",
    ".pal", ".palm", ".pam", ".pano", ".pap", ".pat", ".pax", ".pbm", ".pbn", ".pc1", ".pc2", ".pc3", ".pcd", ".pcds",
    ".pct", ".pcx", ".pdd", ".pdn", ".pds", ".pe4", ".pfm", ".pfr", ".pfs", ".pgf", ".pgm", ".pgx", ".phm", ".pi1",
    ".pi2", ".pi3", ".pi5", ".pi6", ".pic", ".picnc", ".pict", ".pictclipping", ".pix", ".pixela", ".pjp", ".pjpeg",
    ".pjpg", ".pmg", ".png", ".pni", ".pnm", ".pns", ".pnt", ".pntg", ".pop", ".pp4", ".pp5", ".ppf", ".ppm", ".prw",
    ".ps", ".psb", ".psd", ".psdx", ".pse", ".psf", ".psp", ".pspbrush", ".pspimage", ".ptg", ".ptk", ".pts", ".pvr",
    ".pwp", ".pxd", ".pxi", ".pxicon", ".pxm", ".pxr", ".qmg", ".qoi", ".qptiff", ".qti", ".qtif", ".rad", ".ras",
    ".rast", ".rgb", ".rgba", ".rgbe", ".rgf", ".ric", ".rif", ".riff", ".rix", ".rla", ".rle", ".rli", ".rri", ".rsb",
    ".rtl", ".sai", ".sbp", ".scg", ".sci", ".scn", ".sct", ".sfc", ".sff", ".sfw", ".sgi", ".shg", ".sid", ".sig",
    ".sk", ".sk1", ".sketch", ".skitch", ".skypeemoticonset", ".sld", ".smp", ".snag", ".snagx", ".snx", ".spc",
    ".spiff", ".spj", ".spr", ".sprite", ".spu", ".sr", ".st4", ".st5", ".st6", ".st7", ".st8", ".ste", ".stex",
    ".sumo", ".sun", ".suniff", ".sup", ".sva", ".svg", ".svgz", ".svm", ".svs", ".sxd", ".t2b", ".taac", ".targa",
    ".tb0", ".tbn", ".tdi", ".tex", ".texture", ".tfc", ".tg4", ".tga", ".thm", ".thumb", ".tif", ".tiff", ".tim",
    ".tjp", ".tm2", ".tn", ".tn1", ".tn2", ".tn3", ".tny", ".tpf", ".tpi", ".tps", ".trif", ".tsr", ".tub", ".ufo",
    ".uga", ".ugoira", ".upf", ".urt", ".usertile-ms", ".uyvy", ".v", ".vbr", ".vda", ".vec", ".vff", ".vic", ".vicar",
    ".viff", ".vml", ".vna", ".vpe", ".vrimg", ".vrphoto", ".vsd", ".vsdx", ".vsi", ".vss", ".vst", ".vtf", ".wal",
    ".wb1", ".wbc", ".wbd", ".wbm", ".wbmp", ".wbp", ".wbz", ".wdp", ".webp", ".wfx", ".wi", ".wic", ".wmf", ".wmp",
    ".wmz", ".wpb", ".wpe", ".wpg", ".wsq", ".wvl", ".wzl", ".xar", ".xbm", ".xcf", ".xif", ".xim", ".xisf", ".xpm",
    ".xv", ".xwd", ".xyz", ".yal", ".ysp", ".yuv", ".zif", ".zmf", ".zvi",
    // Camera raw formats.
    ".3fr", ".ari", ".arw", ".bay", ".cap", ".cr2", ".cr3", ".crw", ".cs1", ".dcr", ".dng", ".drf", ".eip", ".erf",
    ".fff", ".gpr", ".iiq", ".k25", ".kdc", ".mdc", ".mef", ".mfw", ".mos", ".mrw", ".nef", ".nrw", ".obm", ".orf",
    ".ori", ".pef", ".ptx", ".pxn", ".raf", ".raw", ".rw2", ".rwl", ".rwz", ".sr2", ".srf", ".srw", ".x3f"};

static_assert(std::size(extensions) == image_extension_count);

} // namespace

media_extension_list image_extensions() {
    return {std::begin(extensions), std::end(extensions)};
}
