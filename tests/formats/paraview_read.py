"""Run by pvpython: reads a series with ParaView's XDMF reader and writes what it shows as arrays for numpy.

usage: pvpython paraview_read.py SERIES.xdmf ARRAYS.npz
"""
import sys

import numpy
from paraview import simple
from vtkmodules.util.numpy_support import vtk_to_numpy

reader = simple.Xdmf3ReaderS(FileName=[sys.argv[1]])
reader.UpdatePipelineInformation()
times = list(reader.TimestepValues) if len(reader.TimestepValues) else [0.0]
arrays = {"times": numpy.array(times)}
for number, time in enumerate(times):
    reader.UpdatePipeline(time)
    data = reader.GetClientSideObject().GetOutputDataObject(0)
    arrays["kind"] = numpy.array(data.GetClassName())
    bounds = [data.GetCell(cell).GetBounds() for cell in range(data.GetNumberOfCells())]
    arrays[f"{number} bounds"] = numpy.array(bounds).reshape(-1, 3, 2)
    for k in range(data.GetCellData().GetNumberOfArrays()):
        array = data.GetCellData().GetArray(k)
        arrays[f"{number} {array.GetName()}"] = vtk_to_numpy(array).copy()  # it is read anew for the next time
numpy.savez(sys.argv[2], **arrays)
