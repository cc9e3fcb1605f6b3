// Renders a volume in every mode and loads one from files. Run it in the folder samples/data.
using System;
using System.IO;
using System.Threading;
using Zentra3D;

static class Sample
{
    static void Print(string name, Volume volume, View view)
    {
        Picture picture = volume.Project(Rotation.Of(30, 40, 50), view);
        uint checksum = 0x811C9DC5; // FNV-1a
        foreach (float value in picture.Pixels)
            foreach (byte part in BitConverter.GetBytes(value))
                checksum = unchecked((checksum ^ part) * 0x01000193);
        Console.WriteLine("{0,-9} {1,2} x {2,2}  {3:X8}", name, picture.Width, picture.Height, checksum);
    }

    static void Main()
    {
        using (Volume volume = Volume.FromVoxels(48, 40, 32, File.ReadAllBytes("grey.raw")))
        {
            Print("maximum", volume, new View { Mode = RenderMode.Maximum, Low = 0, High = 255 });
            Print("minimum", volume, new View { Mode = RenderMode.Minimum, Low = 1, High = 255 });
            Print("sum", volume, new View { Mode = RenderMode.Sum, Low = 0, High = 255 });
            Print("surface", volume, new View { Mode = RenderMode.Surface, Low = 60, High = 256 });
            Print("layers", volume, new View { Mode = RenderMode.Surface, Low = 60, High = 256, Extra = 0.5f });
            Print("blend", volume, new View { Mode = RenderMode.Blend, Low = 0, High = 255, Extra = 0.5f });
            Print("contrast", volume, new View { Mode = RenderMode.Contrast, Low = 0, High = 256 });
            Print("first hit", volume, new View { Mode = RenderMode.FirstHit, Low = 60, High = 255 });
        }
        var files = new Channels { Red = "red.raw", Green = "green.raw", Blue = "blue.raw", Width = 48, Height = 40,
            Depth = 32, MaxDiagonal = 60 };
        using (Volume colour = Volume.Load(files))
        {
            Console.WriteLine("loaded    {0} x {1} x {2}, display range {3:F0} to {4:F0}", colour.Width, colour.Height,
                colour.Depth, colour.DisplayLow, colour.DisplayHigh);
            Print("colour", colour, new View { Mode = RenderMode.Maximum, Low = 0, High = 765 });
        }
        var cancel = new CancellationTokenSource();
        try
        {
            Volume.Load(files, percent =>
            {
                if (percent < 50) return;
                Console.WriteLine("cancelled at {0:F0} %", percent);
                cancel.Cancel();
            }, cancel.Token).Dispose();
        }
        catch (OperationCanceledException) { } // as it was asked to
    }
}
