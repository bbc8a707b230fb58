// Sines of the first quarter turn, and the points of the unit circle read from them.

#ifndef ORV_PRIMITIVES_FFT_SINE_H
#define ORV_PRIMITIVES_FFT_SINE_H

#include <bit>
#include <cstdint>

namespace orv::fft {

// sin(2 pi i / 1024), i = 0..256.
inline constexpr float fft_fix_twiddle_table_32f[257] = {
    0.0F,        0.0061358847F, 0.012271538F, 0.01840673F,  0.024541229F, 0.030674804F, 0.036807224F,
    0.04293826F, 0.049067676F,  0.055195246F, 0.061320737F, 0.06744392F,  0.07356457F,  0.07968244F,
    0.08579731F, 0.091908954F,  0.09801714F,  0.10412163F,  0.110222206F, 0.11631863F,  0.12241068F,
    0.1284981F,  0.1345807F,    0.14065824F,  0.14673047F,  0.15279719F,  0.15885815F,  0.16491312F,
    0.17096189F, 0.17700422F,   0.18303989F,  0.18906866F,  0.19509032F,  0.20110464F,  0.20711137F,
    0.21311031F, 0.21910124F,   0.22508392F,  0.2310581F,   0.2370236F,   0.24298018F,  0.24892761F,
    0.25486565F, 0.2607941F,    0.26671275F,  0.27262136F,  0.2785197F,   0.28440753F,  0.29028466F,
    0.2961509F,  0.30200595F,   0.30784965F,  0.31368175F,  0.31950203F,  0.3253103F,   0.3311063F,
    0.33688986F, 0.34266073F,   0.34841868F,  0.35416353F,  0.35989505F,  0.36561298F,  0.3713172F,
    0.37700742F, 0.38268343F,   0.38834503F,  0.39399204F,  0.3996242F,   0.4052413F,   0.41084316F,
    0.41642955F, 0.42200026F,   0.42755508F,  0.43309382F,  0.43861625F,  0.44412214F,  0.44961134F,
    0.45508358F, 0.46053872F,   0.4659765F,   0.47139674F,  0.47679922F,  0.48218378F,  0.48755017F,
    0.4928982F,  0.49822766F,   0.50353837F,  0.50883013F,  0.51410276F,  0.519356F,    0.52458966F,
    0.52980363F, 0.53499764F,   0.54017144F,  0.545325F,    0.55045795F,  0.55557024F,  0.56066155F,
    0.5657318F,  0.57078075F,   0.57580817F,  0.58081394F,  0.58579785F,  0.5907597F,   0.5956993F,
    0.60061646F, 0.60551107F,   0.6103828F,   0.6152316F,   0.6200572F,   0.6248595F,   0.62963825F,
    0.6343933F,  0.63912445F,   0.64383155F,  0.6485144F,   0.65317285F,  0.6578067F,   0.6624158F,
    0.66699994F, 0.671559F,     0.6760927F,   0.680601F,    0.6850837F,   0.68954057F,  0.69397146F,
    0.69837624F, 0.70275474F,   0.70710677F,  0.7114322F,   0.71573085F,  0.72000253F,  0.7242471F,
    0.72846437F, 0.7326543F,    0.7368166F,   0.7409511F,   0.74505776F,  0.7491364F,   0.7531868F,
    0.7572088F,  0.7612024F,    0.76516724F,  0.76910335F,  0.77301043F,  0.7768885F,   0.7807372F,
    0.78455657F, 0.7883464F,    0.79210657F,  0.7958369F,   0.79953724F,  0.8032075F,   0.8068476F,
    0.81045717F, 0.8140363F,    0.8175848F,   0.8211025F,   0.8245893F,   0.82804507F,  0.8314696F,
    0.8348629F,  0.8382247F,    0.841555F,    0.8448536F,   0.84812033F,  0.8513552F,   0.854558F,
    0.8577286F,  0.86086696F,   0.86397284F,  0.86704624F,  0.87008697F,  0.873095F,    0.8760701F,
    0.8790122F,  0.8819213F,    0.8847971F,   0.88763964F,  0.89044875F,  0.8932243F,   0.89596623F,
    0.8986745F,  0.9013488F,    0.9039893F,   0.9065957F,   0.909168F,    0.91170603F,  0.9142098F,
    0.9166791F,  0.9191139F,    0.92151403F,  0.9238795F,   0.9262102F,   0.9285061F,   0.93076694F,
    0.9329928F,  0.9351835F,    0.937339F,    0.9394592F,   0.94154406F,  0.94359344F,  0.9456073F,
    0.9475856F,  0.94952816F,   0.951435F,    0.953306F,    0.9551412F,   0.95694035F,  0.95870346F,
    0.9604305F,  0.9621214F,    0.96377605F,  0.96539444F,  0.96697646F,  0.9685221F,   0.97003126F,
    0.9715039F,  0.97293997F,   0.97433937F,  0.9757021F,   0.97702813F,  0.9783174F,   0.9795698F,
    0.98078525F, 0.9819639F,    0.9831055F,   0.9842101F,   0.98527765F,  0.9863081F,   0.9873014F,
    0.9882576F,  0.9891765F,    0.9900582F,   0.99090266F,  0.99170977F,  0.99247956F,  0.9932119F,
    0.993907F,   0.9945646F,    0.9951847F,   0.9957674F,   0.9963126F,   0.9968203F,   0.99729043F,
    0.99772304F, 0.9981181F,    0.99847555F,  0.99879545F,  0.99907774F,  0.99932235F,  0.9995294F,
    0.9996988F,  0.9998306F,    0.9999247F,   0.99998116F,  1.0F,
};

// sin(2 pi i / 2^order), i = 0 .. 2^order / 4.
void buildSine(float *sine, std::int32_t order);

struct Twiddle {
  float re, im;
};

// exp(-2 pi i index / 2^order) for an order up to that of the sine table: a quadrant and an entry, no
// trigonometric call.
class UnitCircle {
 public:
  constexpr UnitCircle(const float *sine, std::int32_t sineOrder) : sine_(sine), order_(sineOrder) {}

  constexpr Twiddle at(std::int64_t index, std::int32_t order) const {
    const std::int64_t quarter = std::int64_t{1} << (order_ - 2);
    const std::int64_t turn = (index << (order_ - order)) & (4 * quarter - 1);
    const std::int64_t within = turn & (quarter - 1);
    // Each part is a sine or a cosine by its quadrant, with a sign: (c, -s), (-s, -c), (-c, s), (s, c).
    const auto quadrant = static_cast<std::uint32_t>(turn / quarter);
    const bool odd = quadrant % 2 != 0;
    const float re = sine_[odd ? within : quarter - within];
    const float im = sine_[odd ? quarter - within : within];
    return {negatedIf((quadrant ^ quadrant >> 1U) & 1U, re), negatedIf(~quadrant >> 1U & 1U, im)};
  }

  // sin(2 pi i / 2^order) of the first quarter turn, at the order of the table.
  const float *sines() const { return sine_; }

 private:
  static constexpr float negatedIf(std::uint32_t condition, float v) {
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(v) ^ condition << 31U);
  }

  const float *sine_;
  std::int32_t order_;
};

}  // namespace orv::fft

#endif
