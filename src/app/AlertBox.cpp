#include "app/AlertBox.h"

#include <QMessageBox>
#include <QPushButton>

void showAlert(Alert alert) {
    auto* box = new QMessageBox;
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setText(alert.message);
    box->setInformativeText(alert.informative);
    QList<QAbstractButton*> buttons;
    for (const QString& title : alert.buttons)
        buttons.append(box->addButton(title, buttons.isEmpty() ? QMessageBox::AcceptRole : QMessageBox::RejectRole));
    box->setDefaultButton(qobject_cast<QPushButton*>(buttons.first()));
    box->setEscapeButton(buttons.last());
    QObject::connect(box, &QMessageBox::finished, box,
                     [=, answered = alert.answered] { answered(int(buttons.indexOf(box->clickedButton()))); });
    box->show();
    box->raise();
    box->activateWindow();
}
