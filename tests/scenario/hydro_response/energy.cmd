box
hyd_energy
filein box.txt -noecho
hyd_analysis -no_pot
hyd_analysis_response symmetrize=on
hyd_energy -farfield
rm hyd_kstr .hyd_hysdamp
hyd_energy
dir .hyd_dissipate
setr .hyd_hysdamp v=.01
ident hyd_kstr r=6
hyd_analysis
hyd_energy method=3 symmetrize=of -farfield
hyd_energy method=2 symmetrize=off
cp .hyd_beta kept
rm .hyd_beta
input .hyd_beta r=1
0
hyd_energy
rm .hyd_beta
mv kept .hyd_beta
rm .hyd_fd
hyd_energy
q
