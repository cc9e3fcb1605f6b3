// What a host in C# sees of failures. Run in the folder samples/data. Prints the checks that fail, and ends with their
// number.
using System;
using System.IO;
using System.Threading;
using Zentra3D;

static class Failures
{
    static int failed;

    static void Check(string name, bool passed)
    {
        if (passed) return;
        ++failed;
        Console.WriteLine(name);
    }

    static void Throws<T>(string name, Action body) where T : Exception
    {
        try
        {
            body();
            Check(name + ": nothing", false);
        }
        catch (T) { }
        catch (Exception other) { Check(name + ": " + other, false); }
    }

    static Channels Files()
    {
        return new Channels { Red = "red.raw", Green = "green.raw", Blue = "blue.raw", Width = 48, Height = 40, Depth = 32 };
    }

    static Volume Grey() { return Volume.FromVoxels(48, 40, 32, File.ReadAllBytes("grey.raw")); }

    static void Loads()
    {
        Channels missing = Files(), flat = Files();
        missing.Green = "none.raw";
        flat.Depth = 0;
        Throws<FileNotFoundException>("a file that is not there", () => Volume.Load(missing));
        Throws<ArgumentException>("no file at all", () => Volume.Load(new Channels { Width = 1, Height = 1, Depth = 1 }));
        Throws<ArgumentOutOfRangeException>("a size of nothing", () => Volume.Load(flat));

        var mine = new InvalidTimeZoneException("mine");
        try
        {
            Volume.Load(Files(), percent => { throw mine; });
            Check("what progress throws", false);
        }
        catch (InvalidTimeZoneException caught) { Check("what progress throws", caught == mine); }

        var cancel = new CancellationTokenSource();
        Throws<OperationCanceledException>("a token",
            () => Volume.Load(Files(), percent => { if (percent > 90) cancel.Cancel(); }, cancel.Token));
        float last = 0;
        using (Volume volume = Volume.Load(Files(), percent => last = percent))
            Check("progress comes to the end", last == 100 && volume.Width == 48);
    }

    static void Pictures()
    {
        Throws<ArgumentException>("too few voxels", () => Volume.FromVoxels(48, 40, 32, new byte[7]));
        Volume volume = Grey();
        Throws<ArgumentException>("no such mode",
            () => volume.Project(Rotation.Of(1, 2, 3), new View { Mode = (RenderMode)7 }));
        Throws<ArgumentException>("no rotation", () => volume.Project(new float[] { float.NaN, 0, 0, 0, 1, 0, 0, 0, 1 }, new View()));
        Picture slice = volume.Project(Rotation.Of(0, 0, 0), new View { Low = 1,
            Crop = new Box { X0 = 1, X1 = 1, Y0 = 1, Y1 = 1, Z0 = 1, Z1 = 1 } });
        Check("nothing in the window", slice.Width == 48 && slice.Pixels[0] == Picture.NoValue);
        volume.Dispose();
        volume.Dispose();
        Throws<ObjectDisposedException>("a closed volume", () => volume.Project(Rotation.Of(1, 2, 3), new View()));
    }

    static int Main()
    {
        Loads();
        Pictures();
        return failed;
    }
}
