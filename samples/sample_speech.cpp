// SPDX-License-Identifier: MIT
// The sample's voice searches: short tones as RIFF/WAVE files, PCM, 16 kHz, 16 bits, one channel.
#include "samples/sample_files.h"
#include "samples/sample_source.h"

#include <QtEndian>

namespace {

constexpr quint32 samples_per_second = 16000;
constexpr quint16 bytes_per_sample = 2;

template <class Number>
QByteArray little_endian(Number number) {
    QByteArray bytes(int(sizeof number), '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

QByteArray chunk(const char* name, const QByteArray& content) {
    return name + little_endian(quint32(content.size())) + content;
}

// A square wave, so that every run and every machine gives the same bytes.
QByteArray tone(int hertz, int milliseconds) {
    const int count = int(samples_per_second) * milliseconds / 1000;
    const int half_wave = int(samples_per_second) / (2 * hertz);
    QByteArray samples;
    samples.reserve(count * bytes_per_sample);
    for (int i = 0; i < count; ++i) {
        samples += little_endian(qint16(i / half_wave % 2 == 0 ? 4000 : -4000));
    }
    return samples;
}

QByteArray wave_file(int hertz, int milliseconds) {
    const QByteArray format = little_endian(quint16(1)) + little_endian(quint16(1)) + // PCM, one channel
                              little_endian(samples_per_second) + little_endian(samples_per_second * bytes_per_sample) +
                              little_endian(bytes_per_sample) + little_endian(quint16(8 * bytes_per_sample));
    return chunk("RIFF", "WAVE" + chunk("fmt ", format) + chunk("data", tone(hertz, milliseconds)));
}

} // namespace

bool write_sample_speech(const sample_profile& profile) {
    const QString folder = profile.package_folder() + QStringLiteral("LocalState/LocalRecorder/Speech/");
    const int shift = 10 * profile.number;
    return write_sample_file(folder + QStringLiteral("2019-05-01 weather.wav"), wave_file(440, 100 + shift)) &&
           write_sample_file(folder + QStringLiteral("2019-05-02 navigate home.wav"), wave_file(660, 150 + shift)) &&
           write_sample_file(folder + QStringLiteral("Archive/2018-12-24 music.wav"), wave_file(880, 50 + shift));
}
