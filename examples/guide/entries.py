from _HvMirefoldCoreUI import Halvern

first = Halvern.UI.FileInfo("shot.0001.exr", False)
second = Halvern.UI.FileInfo("shot.0002.exr", False)
shot = Halvern.UI.FileInfo("shot.#.exr", True)
shot.setStartFrame(1)
shot.setEndFrame(2)
shot.insertSequenceFile(1, first)  # not owned: keep the members alive
shot.insertSequenceFile(2, second)
shot.setSequenceName("shot.####.exr 1-2")
print(first.fileName(), "and", second.fileName(), "are", shot.fileName())
