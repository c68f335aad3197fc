// SPDX-License-Identifier: MIT
// Signatures of files.
#include "host/intake/content_kind.h"

namespace intake {
namespace {

struct signature {
    int offset;
    QByteArray bytes;
    judged_content means;
};

const signature signatures[] = {
    {0, QByteArrayLiteral("EVF\x09\x0d\x0a\xff\x00"), {content_kind::ewf}},
    {0, QByteArrayLiteral("KDMV"), {content_kind::vmdk}},
    {0, QByteArrayLiteral("# Disk DescriptorFile"), {content_kind::vmdk}},
    {0, QByteArrayLiteral("conectix"), {content_kind::vhd}},
    {0, QByteArrayLiteral("PK\x03\x04"), {content_kind::archive}},
    {0, QByteArrayLiteral("PK\x05\x06"), {content_kind::archive}},
    {0, QByteArrayLiteral("7z\xbc\xaf\x27\x1c"), {content_kind::archive}},
    {0, QByteArrayLiteral("\x1f\x8b"), {content_kind::archive}},
    {0, QByteArrayLiteral("\x1f\x9d"), {content_kind::archive}},
    {0, QByteArrayLiteral("BZh"), {content_kind::archive}},
    {0,
     QByteArrayLiteral("\xfd"
                       "7zXZ"),
     {content_kind::archive}},
    {0, QByteArrayLiteral("\x28\xb5\x2f\xfd"), {content_kind::archive}},
    {0, QByteArrayLiteral("\x04\x22\x4d\x18"), {content_kind::archive}},
    {257, QByteArrayLiteral("ustar"), {content_kind::archive}},
    {0, QByteArrayLiteral("EVF2"), {content_kind::not_handled, "an EnCase image of the second format (Ex01)"}},
    {0, QByteArrayLiteral("LVF"), {content_kind::not_handled, "a logical EnCase image (L01)"}},
    {0, QByteArrayLiteral("LEF2"), {content_kind::not_handled, "a logical EnCase image (Lx01)"}},
    {0, QByteArrayLiteral("AFF1"), {content_kind::not_handled, "an AFF image"}},
    {0, QByteArrayLiteral("ADSEGMENTEDFILE"), {content_kind::not_handled, "an AD1 image"}},
    {0, QByteArrayLiteral("vhdxfile"), {content_kind::not_handled, "a VHDX image"}},
    {0, QByteArrayLiteral("QFI\xfb"), {content_kind::not_handled, "a QCOW image"}},
    {0, QByteArrayLiteral("<<< "), {content_kind::not_handled, "a VDI image"}},
    {0, QByteArrayLiteral("COWD"), {content_kind::not_handled, "an old VMDK image (COWD)"}},
    {0, QByteArrayLiteral("MSWIM"), {content_kind::not_handled, "a WIM image"}},
    {0, QByteArrayLiteral("Rar!"), {content_kind::not_handled, "a RAR archive"}},
    {0, QByteArrayLiteral("MSCF"), {content_kind::not_handled, "a cabinet archive"}},
};

} // namespace

judged_content judge_content(const QByteArray& head, const QByteArray& tail) {
    if (head.isEmpty()) {
        return {content_kind::empty};
    }
    for (const signature& known : signatures) {
        if (head.mid(known.offset, known.bytes.size()) == known.bytes) {
            return known.means;
        }
    }
    // A VHD of fixed size is a raw image with its mark behind it.
    return {tail.startsWith("conectix") ? content_kind::vhd : content_kind::unknown};
}

} // namespace intake
