#include <QApplication>
#include <iostream>
#include <widgets/FrameSlider.h>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    FrameSlider::SetHeadColour(0xd08020ff); // for all sliders, as are the keys
    FrameSlider::SetKeys({1001, 1060});
    FrameSlider slider(true, nullptr);
    slider.set_frame_range(1001, 1200);
    slider.setCacheFrames({1001, 1002, 1003});
    slider.setValue(1001);
    QObject::connect(&slider, &FrameSlider::sliderMoved,
                     [](int frame) { std::cout << "frame " << frame << std::endl; });
    QObject::connect(&slider, &FrameSlider::sliderInOutChanged, [&] {
        std::cout << "plays " << slider.first_frame() << " to " << slider.last_frame() << std::endl;
    });
    QObject::connect(&slider, &FrameSlider::sliderRangeReset, [&] { slider.zoomToSubrange(); });
    slider.show();
    return application.exec();
}
