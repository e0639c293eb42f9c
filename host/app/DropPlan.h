#pragma once
#include <QStringList>

namespace orvex {

/// What the Add Files dialog is to show at first: files and folders for each of its pages.
struct DropPlan {
    QStringList las;
    QStringList rasters;
    QStringList dems;

    bool IsEmpty() const { return las.isEmpty() && rasters.isEmpty() && dems.isEmpty(); }
};

/// Files go to the page of their kind, by their extension; a file of an unknown kind goes to the LAS page,
/// which says so. Folders go to every page, which takes from them what is its own.
DropPlan DistributePaths(const QStringList& paths);

/// The folders of a sample project's data, each for its page.
DropPlan SamplePlan(const QString& dataFolder);

}  // namespace orvex
