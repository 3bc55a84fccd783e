#ifndef QEL_TESTS_APPS_PICTURES_H
#define QEL_TESTS_APPS_PICTURES_H

// What can be told of a picture without looking at it.

#include <set>
#include <string>

#include <gtest/gtest.h>

#include <vtkImageData.h>
#include <vtkNew.h>
#include <vtkPNGReader.h>

namespace qel_test {

// A picture of the program's size with a white border of the page, many colours and some share of
// points that are not white.
inline void expectPicture(const std::string& path) {
    vtkNew<vtkPNGReader> reader;
    reader->SetFileName(path.c_str());
    reader->Update();
    vtkImageData* image = reader->GetOutput();
    int size[3];
    image->GetDimensions(size);
    ASSERT_EQ(size[0], 1400);
    ASSERT_EQ(size[1], 900);
    std::set<int> colours;
    int inked = 0;
    const int components = image->GetNumberOfScalarComponents();
    for (int y = 0; y < size[1]; ++y) {
        for (int x = 0; x < size[0]; ++x) {
            const auto* rgb = static_cast<unsigned char*>(image->GetScalarPointer(x, y, 0));
            ASSERT_GE(components, 3);
            const int colour = rgb[0] << 16 | rgb[1] << 8 | rgb[2];
            inked += colour != 0xffffff ? 1 : 0;
            colours.insert(colour);
        }
    }
    EXPECT_GT(inked, 5000);
    EXPECT_LT(inked, 1400 * 900);
    EXPECT_GT(colours.size(), 50U);
}

} // namespace qel_test

#endif
