#pragma once

#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

#include "creature/NotchModel.h"
#include "platform/MainLoop.h"

class BehaviourEngine;
class Shelf;

/// What the flags ask for besides changes of the model.
struct FlagEffects {
    bool demo = false;                ///< the live sensors stay off
    bool screenTest = false;          ///< run the screen self-test
    std::optional<QString> chewTest;  ///< run the chew self-test with this request
};

/// Puts the creature into the state that the command line asks for. Unknown and malformed flags are ignored. Main
/// thread.
class CommandLineFlags {
 public:
    /// The references must outlive the object.
    CommandLineFlags(NotchModel& model, Shelf& shelf, BehaviourEngine& behaviour, MainLoop& loop,
                     QStringList arguments);

    /// Applies the flags. One-shot reactions follow 1.5 s later, if this object still lives.
    FlagEffects apply();
    /// The value of `flag`, which ends in "=", from the first argument that begins with it.
    std::optional<QString> value(const char* flag) const;

 private:
    bool has(const char* flag) const;
    std::optional<double> number(const char* flag) const;

    void applyToy(FlagEffects& effects);
    void applyShelfSeeds();
    void applyPointerAndSky();
    void applyPowerAndMood();
    void applySenses();
    void applyHeldAndPlace();
    void later(std::function<void()> reaction);

    NotchModel& model_;
    Shelf& shelf_;
    BehaviourEngine& behaviour_;
    MainLoop& loop_;
    QStringList arguments_;
    std::vector<TimerHandle> reactions_;
};
