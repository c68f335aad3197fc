// SPDX-License-Identifier: MIT
// The file extensions that make a name an audio file's: common and rare formats, without duplicates.
#include "common/media_extensions.h"

#include <iterator>

namespace {

constexpr const char* extensions[] = {
    ".2sf",   ".2sflib",   ".3ga",     ".4mp",     ".669",      ".6cm",     ".8cm",      ".8med",    ".8svx",
    ".a2b",   ".a2i",      ".a2m",     ".a52",     ".aa",       ".aa3",     ".aac",      ".aax",     ".aaxc",
    ".ab",    ".abc",      ".abm",     ".ac3",     ".acd",      ".acd-bak", ".acd-zip",  ".acm",     ".act",
    ".adg",   ".adp",      ".ads",     ".adt",     ".adts",     ".adv",     ".adx",      ".afc",     ".agm",
    ".ahx",   ".aif",      ".aifc",    ".aiff",    ".aimppl",   ".aix",     ".akp",      ".al",      ".alac",
    ".alaw",  ".alc",      ".all",     ".als",     ".amf",      ".amr",     ".ams",      ".amxd",    ".amz",
    ".ang",   ".ape",      ".apf",     ".apl",     ".asd",      ".ast",     ".at3",      ".at9",     ".atrac",
    ".au",    ".aud",      ".aup",     ".aup3",    ".awb",      ".axa",     ".ay",       ".b4s",     ".band",
    ".bcstm", ".bcwav",    ".bfstm",   ".bfwav",   ".bmc",      ".bnk",     ".bonk",     ".box",     ".brstm",
    ".bun",   ".bwf",      ".bwg",     ".bww",     ".caf",      ".caff",    ".cda",      ".cdda",    ".cdo",
    ".cdr",   ".cel",      ".cgrp",    ".cidb",    ".cma",      ".cmf",     ".cpr",      ".cust",    ".cvsd",
    ".cwp",   ".d00",      ".d01",     ".dbm",     ".dcf",      ".dcm",     ".dfc",      ".dff",     ".dls",
    ".dm",    ".dmc",      ".dmf",     ".dmsa",    ".dmse",     ".dra",     ".ds",       ".ds2",     ".dsf",
    ".dsm",   ".dsp",      ".dss",     ".dtm",     ".dts",      ".dtshd",   ".dvf",      ".eac3",    ".ec3",
    ".ens",   ".esps",     ".evrc",    ".exs",     ".f32",      ".f4a",     ".f64",      ".far",     ".fc14",
    ".fev",   ".flac",     ".flm",     ".flp",     ".fls",      ".fsb",     ".fsm",      ".fssd",    ".fst",
    ".ftm",   ".ftmx",     ".fur",     ".fxb",     ".fxp",      ".fzb",     ".fzf",      ".fzv",     ".g721",
    ".g722",  ".g723",     ".g726",    ".gbs",     ".gdm",      ".gig",     ".gp",       ".gp3",     ".gp4",
    ".gp5",   ".gpk",      ".gpx",     ".gsf",     ".gsflib",   ".gsm",     ".gt2",      ".gtp",     ".gym",
    ".h5s",   ".hbs",      ".hca",     ".hcom",    ".hes",      ".hmi",     ".hmp",      ".hps",     ".hsc",
    ".hvl",   ".idsp",     ".iff",     ".imf",     ".imw",      ".imy",     ".ins",      ".ircam",   ".it",
    ".iti",   ".itls",     ".its",     ".itz",     ".j2b",      ".jam",     ".jspf",     ".k25",     ".k26",
    ".kar",   ".kin",      ".kit",     ".kmp",     ".kpl",      ".krz",     ".ksf",      ".kss",     ".kt3",
    ".la",    ".lds",      ".logic",   ".logicx",  ".lpc",      ".lvp",     ".m2",       ".m3u",     ".m3u8",
    ".m4a",   ".m4b",      ".m4p",     ".m4r",     ".mac",      ".mdl",     ".mdx",      ".mdz",     ".med",
    ".mid",   ".midi",     ".mini2sf", ".minigsf", ".minincsf", ".minipsf", ".minipsf2", ".miniusf", ".mka",
    ".mlp",   ".mmf",      ".mml",     ".mmm",     ".mmp",      ".mmpz",    ".mo3",      ".mod",     ".mogg",
    ".mp+",   ".mp1",      ".mp2",     ".mp3",     ".mpa",      ".mpc",     ".mpga",     ".mpp",     ".mscx",
    ".mscz",  ".msv",      ".mtf",     ".mtm",     ".mus",      ".musa",    ".musicxml", ".musx",    ".mux",
    ".mx5",   ".mxl",      ".mxmf",    ".nbs",     ".ncor",     ".ncw",     ".nist",     ".nkb",     ".nkc",
    ".nki",   ".nkm",      ".nks",     ".nkx",     ".nra",      ".nrt",     ".nsa",      ".nsf",     ".nsfe",
    ".nst",   ".nus3bank", ".nvf",     ".nwc",     ".ofr",      ".ofs",     ".oga",      ".ogg",     ".okt",
    ".okta",  ".oma",      ".omf",     ".omg",     ".omx",      ".opus",    ".orc",      ".org",     ".ots",
    ".ove",   ".p61",      ".pac",     ".paf",     ".pandora",  ".pat",     ".pbf",      ".pca",     ".pcast",
    ".pcg",   ".pcm",      ".pdx",     ".peak",    ".pek",      ".phy",     ".pjunoxl",  ".pk",      ".pkf",
    ".pla",   ".plm",      ".pls",     ".plst",    ".ply",      ".pmd",     ".pna",      ".pno",     ".ppc",
    ".ppcx",  ".prg",      ".psc",     ".psf",     ".psf1",     ".psf2",    ".psflib",   ".psm",     ".psy",
    ".pt2",   ".pt3",      ".ptcop",   ".ptf",     ".ptm",      ".pts",     ".ptt",      ".ptx",     ".ptxt",
    ".pvc",   ".pvf",      ".q1",      ".q2",      ".qcp",      ".qdm",     ".qoa",      ".r1m",     ".ra",
    ".ram",   ".raw",      ".rax",     ".rbs",     ".rcp",      ".rcy",     ".record",   ".rex",     ".rf64",
    ".rfl",   ".rgrp",     ".rip",     ".rka",     ".rmf",      ".rmi",     ".rmj",      ".rmx",     ".rng",
    ".rns",   ".rol",      ".rpp",     ".rpp-bak", ".rsf",      ".rsn",     ".rso",      ".rta",     ".rti",
    ".rtm",   ".rts",      ".rvx",     ".rx2",     ".s3i",      ".s3m",     ".s3z",      ".saf",     ".sam",
    ".sap",   ".sb",       ".sbg",     ".sbi",     ".sbk",      ".sc2",     ".scs11",    ".sd",      ".sd2",
    ".sd2f",  ".sdat",     ".sdii",    ".sds",     ".sdt",      ".sdx",     ".seg",      ".seq",     ".ses",
    ".sesx",  ".sf",       ".sf2",     ".sf3",     ".sfap0",    ".sfark",   ".sfk",      ".sfl",     ".sfpack",
    ".sfs",   ".sfz",      ".sgp",     ".shn",     ".sib",      ".sid",     ".sln",      ".slp",     ".slx",
    ".sma",   ".smf",      ".smp",     ".smpx",    ".snd",      ".sndh",    ".sndr",     ".sndt",    ".sng",
    ".sns",   ".snsf",     ".sou",     ".spc",     ".sph",      ".sppack",  ".sprg",     ".spx",     ".sseq",
    ".ssf",   ".ssnd",     ".stap",    ".stm",     ".stp",      ".strm",    ".stw",      ".stx",     ".sty",
    ".svd",   ".svx",      ".sw",      ".swa",     ".swav",     ".sxt",     ".syh",      ".syn",     ".syw",
    ".syx",   ".tak",      ".td0",     ".tfmx",    ".tg",       ".thd",     ".thx",      ".tm2",     ".tm8",
    ".tmc",   ".toc",      ".trak",    ".tsp",     ".tta",      ".tun",     ".tvq",      ".txw",     ".u8",
    ".uax",   ".ub",       ".ulaw",    ".ult",     ".ulw",      ".umx",     ".uni",      ".usf",     ".usflib",
    ".ust",   ".ustx",     ".uw",      ".uwf",     ".v2m",      ".vag",     ".val",      ".vap",     ".vb",
    ".vc3",   ".vdj",      ".vgm",     ".vgz",     ".vlc",      ".vmd",     ".vmf",      ".vmo",     ".voc",
    ".voi",   ".vox",      ".voxal",   ".vpl",     ".vpm",      ".vpr",     ".vpw",      ".vqf",     ".vqm",
    ".vrf",   ".vsq",      ".vsqx",    ".vtx",     ".vyf",      ".w01",     ".w64",      ".wand",    ".wav",
    ".wave",  ".wax",      ".wem",     ".wfb",     ".wfd",      ".wfm",     ".wfp",      ".wma",     ".wow",
    ".wpk",   ".wpl",      ".wpp",     ".wproj",   ".wrk",      ".wus",     ".wut",      ".wv",      ".wvc",
    ".wve",   ".wwu",      ".xa",      ".xfs",     ".xi",       ".xiz",     ".xm",       ".xma",     ".xmf",
    ".xmi",   ".xms",      ".xmu",     ".xmz",     ".xp",       ".xpf",     ".xrns",     ".xsb",     ".xsp",
    ".xspf",  ".xt",       ".xwb",     ".xwm",     ".xwma",     ".ym",      ".yookoo",   ".zab",     ".zgr",
    ".zpa",   ".zpl",      ".zvd",     ".zvr"};

static_assert(std::size(extensions) == audio_extension_count);

} // namespace

media_extension_list audio_extensions() {
    return {std::begin(extensions), std::end(extensions)};
}
