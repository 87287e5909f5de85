#include "app/AlertBox.h"

#include <QMessageBox>
#include <QPushButton>

void showAlert(Alert alert) {
    auto* box = new QMessageBox;
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setText(alert.message);
    box->setInformativeText(alert.informative);
    for (qsizetype i = 0; i < alert.buttons.size(); ++i) {
        auto* button = box->addButton(alert.buttons[i], i == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole);
        QObject::connect(button, &QPushButton::clicked, box, [i, answered = alert.answered] { answered(int(i)); });
        if (i == 0) box->setDefaultButton(button);
    }
    box->show();
    box->raise();
    box->activateWindow();
}
