#pragma once

#include <string>

#include "norvex/Conf/DataHelpers/Codecs/CodecHelpers.h"

/// The video and still picture codec helpers. The class says by its base whether the encoder's frame rates bind it.
/// Each helper, or family of helpers that differ in their tables alone, is told in a source of its own. The bitrates
/// and qualities that they start with are the book's own choice.

namespace Norvex::Conf {

class NORVEX_API DataHelperVideoCodecX264 final : public VideoCodecHelper {
public:
    DataHelperVideoCodecX264();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecX265 final : public VideoCodecHelper {
public:
    DataHelperVideoCodecX265();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecMpeg1 final : public VideoCodecHelper {
public:
    DataHelperVideoCodecMpeg1();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecMpeg2 final : public VideoCodecHelper {
public:
    DataHelperVideoCodecMpeg2();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    /// Without the rule about the frame rates that the encoder declares.
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecMpeg4 final : public VideoCodecHelper {
public:
    DataHelperVideoCodecMpeg4();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecH263 final : public VideoCodecHelper {
public:
    DataHelperVideoCodecH263();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

/// Sorenson H.263. It needs neither a resizer nor a frame rate filter.
class NORVEX_API DataHelperVideoCodecFlv1 final : public RefCounted<DataHelperCodecFFMPEG> {
public:
    DataHelperVideoCodecFlv1();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecDV final : public VideoCodecHelper {
public:
    DataHelperVideoCodecDV();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetValidationRules(RuleList& rules) const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

/// Serves every still picture codec.
class NORVEX_API DataHelperVideoCodecImageBase : public VideoCodecHelper {
public:
    explicit DataHelperVideoCodecImageBase(const std::string& codecId);
    static SP<IDataHelper> Create(const std::string& codecId);

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecMjpeg final : public DataHelperVideoCodecImageBase {
public:
    DataHelperVideoCodecMjpeg();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

class NORVEX_API DataHelperVideoCodecAV1 final : public AnyFrameRateVideoCodecHelper {
public:
    DataHelperVideoCodecAV1();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecHAP final : public AnyFrameRateVideoCodecHelper {
public:
    DataHelperVideoCodecHAP();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecProres final : public VideoCodecHelper {
public:
    DataHelperVideoCodecProres();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

/// QuickTime Animation.
class NORVEX_API DataHelperVideoCodecRLE final : public VideoCodecHelper {
public:
    DataHelperVideoCodecRLE();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecTheora final : public AnyFrameRateVideoCodecHelper {
public:
    DataHelperVideoCodecTheora();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecUTVideo final : public VideoCodecHelper {
public:
    DataHelperVideoCodecUTVideo();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
};

class NORVEX_API DataHelperVideoCodecVP8 final : public AnyFrameRateVideoCodecHelper {
public:
    DataHelperVideoCodecVP8();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecVP9 final : public AnyFrameRateVideoCodecHelper {
public:
    DataHelperVideoCodecVP9();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

class NORVEX_API DataHelperVideoCodecWmv2 final : public AnyFrameRateVideoCodecHelper {
public:
    DataHelperVideoCodecWmv2();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

/// For hosts that bring their own encoder: FFmpeg has none, and the catalogue has no row for it.
class NORVEX_API DataHelperVideoCodecWmv3 final : public AnyFrameRateVideoCodecHelper {
public:
    DataHelperVideoCodecWmv3();
    static SP<IDataHelper> Create();

    Core::Property GetDefaults() const override;
    void GetConstraints(ConstraintMap& constraints) const override;
};

}  // namespace Norvex::Conf
