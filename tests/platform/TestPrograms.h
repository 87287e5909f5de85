#pragma once

#include "support/Environment.h"
#include "support/TestFolder.h"
#include "support/XSession.h"

/// A PATH with the programs of the test and no others. Each writes down what it was started with.
class TestPrograms : public TestFolder {
 public:
    /// `also` is a line of shell to be run before the arguments are told.
    void install(const QByteArray& name, const QByteArray& also = {}) const {
        const QByteArray file = path(name);
        write(name, "#!/bin/sh\n" + also + "\n{ printf '%s\\0' \"$@\"; } > " + file + ".part\n/bin/mv " + file +
                        ".part " + file + ".told\n");
        std::filesystem::permissions(file.toStdString(), std::filesystem::perms::owner_all);
    }
    /// The arguments that the program was last started with; none if it was not.
    QByteArrayList told(const QByteArray& name) const {
        const QByteArray words = read(name + ".told");
        return words.split('\0').mid(0, words.count('\0'));
    }
    /// Waits until the program was started with `arguments`, and forgets it.
    testing::AssertionResult tells(const QByteArray& name, const QByteArrayList& arguments) const {
        auto result = waitFor([&] { return told(name) == arguments; }, 10);
        if (!result) result << ": " << told(name).join(' ').constData();
        remove(name + ".told");
        return result;
    }

 private:
    EnvironmentVariable path_{"PATH", path()};
};
